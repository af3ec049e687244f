% rig = zelmLoad (name)
%
% Reads the calibration that `zelm calibrate` writes (rig.zcal). The fields of the result:
%
%   views                number of views that it was made from
%   left, right          cameras: model (0 perspective, 1 tilted, 2 parallel), width, height, A (camera matrix), k1 and
%                        k2 (lens), theta, and R and t with X_camera = R * X + t in the frame of the plate of view 0
%   R, t                 X_right = R * X_left + t; empty for a parallel camera
%   baseline             in plate units
%   convergence          angle between the optical axes, radians
%   F                    x_left' * F * x_right = 0 for undistorted pixels [x; y; 1]
%   block                the bytes of the file
%
% Pixels count from 0, as everywhere in zelmLib: the centre of the first one, image(1, 1), is (0, 0).
function rig = zelmLoad (name)
  [file, words] = fopen (name, 'r');
  if file < 0
    error ('zelm:failed', '%s: cannot be read: %s', name, words);
  end
  block = fread (file, Inf, '*uint8')';
  fclose (file);
  try
    rig = zelmOctave ('rig', block);
  catch failure
    error ('zelm:failed', '%s: %s', name, failure.message);
  end
end
