% undistorted = zelmUndistort (rig, side, pixels)
%
% Raw pixels of a camera, 'L' or 'R', without the distortion of the lens: rows of x, y that count from 0; NaN where it
% cannot be removed.
function undistorted = zelmUndistort (rig, side, pixels)
  undistorted = zelmOctave ('undistort', rig.block, side, pixels);
end
