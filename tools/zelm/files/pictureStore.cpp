#include "pictureStore.h"

namespace zelm::tool {

std::shared_ptr<const Picture> PictureStore::get(const std::filesystem::path& path) {
    constexpr std::size_t kMaxBytes = std::size_t{1} << 30;
    if (auto found = keptOf(path)) {
        return found;
    }
    auto picture = std::make_shared<const Picture>(readPicture(path));  // several threads decode at a time
    const std::scoped_lock lock(mutex);
    if (bytes + picture->pixels.size() <= kMaxBytes && kept.emplace(path, picture).second) {
        bytes += picture->pixels.size();
    }
    return picture;
}

std::shared_ptr<const Picture> PictureStore::keptOf(const std::filesystem::path& path) {
    const std::scoped_lock lock(mutex);
    const auto found = kept.find(path);
    return found == kept.end() ? nullptr : found->second;
}

}  // namespace zelm::tool
