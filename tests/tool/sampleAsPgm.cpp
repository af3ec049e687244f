// Writes the views of samples/desk-rig into a folder as PGM files, for programs that read those alone.
#include <fmt/format.h>

#include <exception>
#include <filesystem>

#include "imageFile.h"
#include "outputFiles.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const std::filesystem::path sample = argv[1];
    const std::filesystem::path folder = argv[2];
    try {
        zelm::tool::OutputFiles output;
        output.prepareFolder(folder);
        for (const char* const side : {"left", "right"}) {
            for (int view = 0; view < 12; ++view) {
                const std::string name = fmt::format("{}_{:02}", side, view);
                const std::string pgm = name + ".pgm";
                output.add(folder / pgm, encodePicture(zelm::tool::readPicture(sample / (name + ".png")), pgm));
            }
        }
        output.commit();
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return 0;
}
