// Formats of other programs by the names that people give them.
#ifndef ZELM_TOOL_EXCHANGE_FORMAT_H
#define ZELM_TOOL_EXCHANGE_FORMAT_H

#include <zelmMeasure.h>

#include <optional>
#include <string>
#include <vector>

namespace zelm::tool {

struct ExchangeFormat {
    std::string word;                // on the command line
    std::string program;             // for people
    std::int32_t number = 0;         // ZelmMeasureFileFormat
    std::vector<std::string> files;  // names of what is exported; two: left and right
    bool inMetres = false;

    bool hasFileOfEach() const { return files.size() == 2; }
};

// Throws Failure, naming the option, for a word that is none.
const ExchangeFormat& exchangeFormat(const std::string& word, const std::string& option);

// The words, for help and for options.
std::vector<std::string> exchangeWords();

// Metres in a unit of length, "mm"; nothing for an unknown one.
std::optional<double> knownMetres(const std::string& unit);

// The same; throws Failure, naming --unit, for an unknown one.
double metresOfUnit(const std::string& unit);

}  // namespace zelm::tool

#endif
