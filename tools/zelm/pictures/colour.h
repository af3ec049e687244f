// A colour.
#ifndef ZELM_TOOL_COLOUR_H
#define ZELM_TOOL_COLOUR_H

namespace zelm::tool {

struct Colour {
    double red, green, blue;  // 0 to 1
};

}  // namespace zelm::tool

#endif
