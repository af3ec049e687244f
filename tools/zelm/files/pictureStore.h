// Pictures of a set of files, each decoded once.
#ifndef ZELM_TOOL_PICTURE_STORE_H
#define ZELM_TOOL_PICTURE_STORE_H

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>

#include "imageFile.h"

namespace zelm::tool {

// Keeps the gray pictures that it has read, up to a gibibyte; a set larger than that is decoded again where needed.
// Safe to ask from several threads.
class PictureStore {
public:
    // Throws what readPicture throws. The picture stays for as long as the caller holds it.
    std::shared_ptr<const Picture> get(const std::filesystem::path& path);

private:
    std::shared_ptr<const Picture> keptOf(const std::filesystem::path& path);

    std::mutex mutex;
    std::map<std::filesystem::path, std::shared_ptr<const Picture>> kept;
    std::size_t bytes = 0;
};

}  // namespace zelm::tool

#endif
