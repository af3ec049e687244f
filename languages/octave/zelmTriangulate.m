% [points, statuses, errors, angles] = zelmTriangulate (rig, left, right, maxError)
%
% Points of space of pairs of raw pixels, rows of x, y that count from 0. A row of points is X, Y, Z in the frame of the
% plate of view 0; NaN where the pair has no point. maxError is the number of pixels by which the rays of a pair may
% miss each other before it is a mismatch; without it, or 0, nothing is one.
%
%   statuses   int32: 0 ok, 1 behind a camera, 2 lens distortion cannot be removed, 3 rays are parallel, 4 mismatch,
%              5 a pixel outside its image
%   errors     pixels from the left and the right pixel to the point's projections
%   angles     between the two rays, radians
function [points, statuses, errors, angles] = zelmTriangulate (rig, left, right, maxError)
  if nargin < 4
    maxError = 0;
  end
  [points, statuses, errors, angles] = zelmOctave ('triangulate', rig.block, left, right, maxError);
end
