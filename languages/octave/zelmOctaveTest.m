% zelmOctaveTest (rigName, referenceName)
%
% Compares the functions here with what a C program says of the same calibration.
function zelmOctaveTest (rigName, referenceName)
  reference = readReference (referenceName);
  rig = zelmLoad (rigName);
  assert (rig.views, 1);
  for side = 'LR'
    camera = rig.left;
    if side == 'R'
      camera = rig.right;
    end
    same (reference, ['camera_' side], [camera.model camera.width camera.height]);
    numbers = reference.(['intrinsics_' side]);
    assert (rows (camera.A), numbers(1:9));
    assert ([camera.theta camera.k1 camera.k2], numbers(15:17));
    same (reference, ['pose_' side], [rows(camera.R) camera.t' reference.(['pose_' side])(13:15)]);
  end
  same (reference, 'relative_R', rows (rig.R));
  same (reference, 'relative_t', rig.t');
  same (reference, 'baseline', rig.baseline);
  same (reference, 'convergence', rig.convergence);
  same (reference, 'F', rows (rig.F));

  left = reshape (reference.left, 2, [])';
  right = reshape (reference.right, 2, [])';
  [points, statuses, errors, angles] = zelmTriangulate (rig, left, right, 5);
  same (reference, 'statuses', double (statuses'));
  same (reference, 'positions', rows (points));
  same (reference, 'errors', rows (errors));
  same (reference, 'angles', angles');
  same (reference, 'undistorted_L', rows (zelmUndistort (rig, 'L', left)));
  same (reference, 'undistorted_R', rows (zelmUndistort (rig, 'R', right)));
  assert (points(1, :), [20 -15 8], 1e-7);  % the example of docs/formats.md, whose pixels have nine decimals
  assert (size (zelmTriangulate (rig, zeros (0, 2), zeros (0, 2))), [0 3]);

  % Without its k2 the lens of the left camera folds the image at 1.1 focal lengths from the principal point.
  folded = rig;
  folded.block(460 + 16 * 8 + (1:8)) = 0;
  assert (zelmUndistort (folded, 'L', [2600 480; 640 480]), [NaN NaN; 640 480]);

  fails (@() zelmLoad ('none.zcal'), 'none.zcal: cannot be read');
  fails (@() zelmLoad (referenceName), referenceName);
  fails (@() zelmTriangulate (rig, zeros (2, 2), zeros (3, 2)), '2 left pixels, 3 right ones');
  fails (@() zelmTriangulate (rig, zeros (2, 3), zeros (2, 3)), 'rows of x, y');
  fails (@() zelmUndistort (rig, 'X', left), '''L'' or ''R''');
  fails (@() zelmUndistort (rig, 'L', single (left)), 'matrix of doubles');
  fails (@() zelmOctave ('rig', 'text'), 'block of uint8');
  fails (@() zelmOctave (), 'is wanted');
  printf ('zelmOctave: all checks passed\n');
end

function values = readReference (name)
  values = struct ();
  lines = strsplit (strtrim (fileread (name)), "\n");
  for i = 1:numel (lines)
    words = strsplit (lines{i}, ' ');
    values.(strrep (words{1}, '.', '_')) = cellfun (@str2double, strrep (words(2:end), '-nan', 'nan'));
  end
end

function flat = rows (matrix)
  flat = reshape (matrix', 1, []);
end

function same (reference, name, found)
  assert (isequaln (reference.(name), found), '%s: %s, not %s', name, mat2str (found, 17), ...
          mat2str (reference.(name), 17));
end

function fails (action, words)
  try
    action ();
  catch failure
    assert (~isempty (strfind (failure.message, words)), '%s lacks %s', failure.message, words);
    return
  end
  error ('nothing failed where "%s" was expected', words);
end
