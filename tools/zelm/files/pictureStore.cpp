#include "pictureStore.h"

namespace zelm::tool {

std::shared_ptr<const Picture> PictureStore::get(const std::filesystem::path& path) {
    constexpr std::size_t kMaxBytes = std::size_t{1} << 30;
    if (const auto found = kept.find(path); found != kept.end()) {
        return found->second;
    }
    auto picture = std::make_shared<const Picture>(readPicture(path));
    if (bytes + picture->pixels.size() <= kMaxBytes) {
        bytes += picture->pixels.size();
        kept.emplace(path, picture);
    }
    return picture;
}

}  // namespace zelm::tool
