// Archives of arrays: ZIP, by libzip, in memory.
#include <zip.h>

#include <cstring>
#include <memory>

#include "fault.h"
#include "npyArray.h"

namespace zelm::measure {
namespace {

constexpr zip_uint64_t kMaxEntry = zip_uint64_t{64} << 20;  // bytes of an array, inflated; a calibration's take 200
constexpr zip_int64_t kMaxEntries = 1000;

struct Discard {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ArchivePtr = std::unique_ptr<zip_t, Discard>;

struct Free {
    void operator()(zip_source_t* source) const { zip_source_free(source); }
};
using SourcePtr = std::unique_ptr<zip_source_t, Free>;

struct CloseFile {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

void requireZip(bool isDone) {
    if (!isDone) {
        throw std::bad_alloc();
    }
}

void addEntry(zip_t* archive, const std::string& name, const std::string& bytes) {
    SourcePtr source(zip_source_buffer(archive, bytes.data(), bytes.size(), 0));
    requireZip(source != nullptr);
    const zip_int64_t index = zip_file_add(archive, name.c_str(), source.get(), ZIP_FL_ENC_UTF_8);
    requireZip(index >= 0);
    source.release();  // the archive's now
    requireZip(zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0) == 0);
    // The format's first day, so that the same calibration gives the same file.
    requireZip(zip_file_set_dostime(archive, static_cast<zip_uint64_t>(index), 0, 0x21, 0) == 0);
}

std::string bytesOf(zip_source_t* source) {
    zip_stat_t stat;
    zip_stat_init(&stat);
    requireZip(zip_source_stat(source, &stat) == 0 && zip_source_open(source) == 0);
    std::string bytes(stat.size, '\0');
    const zip_int64_t count = zip_source_read(source, bytes.data(), bytes.size());
    zip_source_close(source);
    requireZip(count == static_cast<zip_int64_t>(bytes.size()));
    return bytes;
}

std::string entryOf(zip_t* archive, zip_uint64_t index, const zip_stat_t& stat) {
    const std::unique_ptr<zip_file_t, CloseFile> file(zip_fopen_index(archive, index, 0));
    std::string bytes(stat.size, '\0');
    if (!file || zip_fread(file.get(), bytes.data(), bytes.size()) != static_cast<zip_int64_t>(bytes.size())) {
        refuse("damaged archive: was it copied whole?");
    }
    return bytes;
}

}  // namespace

std::string npzBytes(const std::vector<std::pair<std::string, std::string>>& arrays) {
    const SourcePtr source(zip_source_buffer_create(nullptr, 0, 0, nullptr));
    requireZip(source != nullptr);
    ArchivePtr archive(zip_open_from_source(source.get(), ZIP_TRUNCATE, nullptr));
    requireZip(archive != nullptr);
    zip_source_keep(source.get());
    for (const auto& [name, bytes] : arrays) {
        addEntry(archive.get(), name + ".npy", bytes);
    }
    requireZip(zip_close(archive.get()) == 0);
    archive.release();
    return bytesOf(source.get());
}

NamedArrays arraysOfNpz(std::string_view bytes) {
    SourcePtr source(zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr));
    requireZip(source != nullptr);
    const ArchivePtr archive(zip_open_from_source(source.get(), ZIP_RDONLY, nullptr));
    if (!archive) {
        refuse("no archive of NumPy (.npz), or a damaged one: write it with numpy.savez");
    }
    source.release();  // the archive's now
    NamedArrays arrays;
    const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    for (zip_int64_t i = 0; i < std::min(count, kMaxEntries); ++i) {
        zip_stat_t stat;
        if (zip_stat_index(archive.get(), static_cast<zip_uint64_t>(i), 0, &stat) != 0 || stat.size > kMaxEntry) {
            continue;
        }
        std::string name = stat.name;
        if (!name.ends_with(".npy")) {
            continue;
        }
        name.resize(name.size() - 4);
        const std::string entry = entryOf(archive.get(), static_cast<zip_uint64_t>(i), stat);
        NamedArray array;
        try {
            array = npyArray(entry, name);
        } catch (const Fault&) {
            continue;
        }
        arrays.add(name, std::move(array));
    }
    return arrays;
}

}  // namespace zelm::measure
