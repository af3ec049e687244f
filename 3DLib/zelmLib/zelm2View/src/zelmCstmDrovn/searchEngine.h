// The search behind the exported forms.
#ifndef ZELM_SEARCH_ENGINE_H
#define ZELM_SEARCH_ENGINE_H

#include <cstdint>

#include "maskedPlane.h"
#include "scorer.h"
#include "zelm/cstmSearch.h"

namespace zelm {

// Searches image along tPrm.epiLine; of tPrm everything but the image and its mask is read. The arguments are valid.
// Returns ZELM_OK with *iCount and as many taMatches written; else a failure, or the number of points in which the line
// crosses the region when there is no pixel between them, with nothing written.
std::int32_t innerSearchOnEpiLine(const SearchTemplate& tmpl, const MaskedPlane& image, const ZelmCstmSearchPrm& tPrm,
                                  std::int32_t* iCount, ZelmCstmMatch* taMatches);

}  // namespace zelm

#endif
