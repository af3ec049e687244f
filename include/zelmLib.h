/// @file
/// zelmLib: measurement-grade two-camera vision and numerics. The one header that users include; valid C99 and C++17.
///
/// Conventions: pixel centres lie at integer coordinates, x to the right, y downwards. Matrices are flat row-major
/// blocks of doubles, rows before columns. Angles are radians unless a degree flag says otherwise. A pose (R, t) maps
/// world to camera: X_camera = R * X_world + t. All functions are reentrant: there is no global state but a cache of
/// processor features.
#ifndef ZELM_LIB_H
#define ZELM_LIB_H

#include "zelm/base.h"
#include "zelm/bin.h"
#include "zelm/calib.h"
#include "zelm/cg.h"
#include "zelm/clp2d.h"
#include "zelm/clp3d.h"
#include "zelm/cstmGeometry.h"
#include "zelm/cstmSearch.h"
#include "zelm/edge1d.h"
#include "zelm/fit.h"
#include "zelm/image.h"
#include "zelm/kernels.h"
#include "zelm/mat.h"
#include "zelm/match.h"
#include "zelm/math.h"
#include "zelm/mathCorrelation.h"
#include "zelm/mathRoots.h"
#include "zelm/misc.h"
#include "zelm/twoView.h"
#include "zelm/twoViewGeometry.h"

#endif
