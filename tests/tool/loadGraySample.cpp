// The image reader of the README's example: the sample's files through the tool's reader.
#include <fmt/format.h>

#include <exception>
#include <list>
#include <string>

#include "imageFile.h"
#include "loadGray.h"

const unsigned char* loadGray(const char* side, int view) {
    static std::list<zelm::tool::Picture> pictures;
    try {
        const std::string path = fmt::format("{}/samples/desk-rig/{}_{:02}.png", ZELM_SOURCE_DIR, side, view);
        pictures.push_back(zelm::tool::readPicture(path));
    } catch (const std::exception&) {
        return nullptr;
    }
    return pictures.back().pixels.data();
}
