// zelmLib from C#: opening a calibration, its cameras, points of space, pixels without lens distortion.
//
// The records are those of include/zelmMeasure/; libzelmMeasure.so.1 is found as the system finds libraries
// (LD_LIBRARY_PATH, or a folder that ldconfig knows). docs/languages.md shows a program.
using System;
using System.IO;
using System.Runtime.InteropServices;

namespace Zelm
{
    /// <summary>A function of the library failed; Status is its negative status.</summary>
    public class ZelmException : Exception
    {
        public int Status { get; }

        public ZelmException(string words, int status) : base(words)
        {
            Status = status;
        }
    }

    /// <summary>The library is missing, lacks a function, or is of another layout than this file.</summary>
    public class ZelmLibraryException : Exception
    {
        public ZelmLibraryException(string words, Exception inner = null) : base(words, inner) { }
    }

    /// <summary>Camera matrix and lens of a camera: ZelmCameraIntrinsics.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct CameraIntrinsics
    {
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 9)]
        public double[] A;
        public double Alpha, Beta, Gamma, Cx, Cy, Theta, K1, K2;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 5)]
        public double[] Reserved;
    }

    /// <summary>Pose of a camera, X_camera = R X_plate + t: ZelmCameraExtrinsics.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct CameraPose
    {
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 9)]
        public double[] R;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)]
        public double[] T;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)]
        public double[] RotationVector;
    }

    /// <summary>One camera of a rig: ZelmMeasureCamera. Model 0 perspective, 1 tilted, 2 parallel.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Camera
    {
        public int Size, Model, Width, Height;
        public CameraIntrinsics Intrinsics;
    }

    /// <summary>X_right = R X_left + t: ZelmMeasureRelativePose. Convergence is in radians.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct RelativePose
    {
        public int Size, Reserved;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 9)]
        public double[] R;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)]
        public double[] T;
        public double Baseline, Convergence;
    }

    /// <summary>Arrays for the points of a triangulation: ZelmMeasurePoints.</summary>
    [StructLayout(LayoutKind.Sequential)]
    internal struct PointArrays
    {
        public int Size, Reserved;
        public IntPtr Statuses, Positions, Errors, Angles;
        public double MaxError;
        public int Outside, Reserved2;
    }

    /// <summary>What became of a pair of pixels: ZelmMeasurePointStatus.</summary>
    public enum PointStatus { Ok = 0, Behind = 1, Distortion = 2, Parallel = 3, Mismatch = 4, Outside = 5 }

    /// <summary>Points of space. Numbers that a pair does not have are NaN.</summary>
    public sealed class SpacePoints
    {
        public PointStatus[] Statuses;  // one a pair
        public double[,] Positions;     // a row a pair: X, Y, Z in the frame of the plate of view 0
        public double[,] Errors;        // a row a pair: pixels from both pixels to the point's projections
        public double[] Angles;         // one a pair: between the two rays, radians
    }

    /// <summary>A record, its size and the place of one of its late fields, bytes.</summary>
    public sealed class RecordLayout
    {
        public readonly Type Record;
        public readonly int Size, Offset;
        public readonly string Field;

        public RecordLayout(Type record, int size, string field, int offset)
        {
            Record = record;
            Size = size;
            Field = field;
            Offset = offset;
        }
    }

    /// <summary>Compares the records of this file with those of the C headers.</summary>
    public static class Layout
    {
        /// <summary>As the C compiler lays them out.</summary>
        public static readonly RecordLayout[] Expected =
        {
            new RecordLayout(typeof(CameraIntrinsics), 176, "K2", 128),
            new RecordLayout(typeof(CameraPose), 120, "RotationVector", 96),
            new RecordLayout(typeof(Camera), 192, "Intrinsics", 16),
            new RecordLayout(typeof(RelativePose), 120, "T", 80),
            new RecordLayout(typeof(PointArrays), 56, "MaxError", 40),
        };

        public static void Check(params RecordLayout[] expected)
        {
            foreach (var entry in expected)
            {
                int size = Marshal.SizeOf(entry.Record);
                int offset = Marshal.OffsetOf(entry.Record, entry.Field).ToInt32();
                if (size != entry.Size || offset != entry.Offset)
                {
                    throw new ZelmLibraryException(
                        $"the record {entry.Record.Name} has {size} bytes and {entry.Field} at {offset} here, not " +
                        $"{entry.Size} and {entry.Offset} as in the library: take its zelm.cs, in a 64-bit program");
                }
            }
        }
    }

    internal static class Native
    {
        private const string Library = "libzelmMeasure.so.1";

        [DllImport(Library)] internal static extern int zelmMeasureRigOpen(byte[] block, long size, ref IntPtr rig);
        [DllImport(Library)] internal static extern void zelmMeasureRigClose(ref IntPtr rig);
        [DllImport(Library)] internal static extern IntPtr zelmMeasureRigError(IntPtr rig);
        [DllImport(Library)] internal static extern int zelmMeasureRigViews(IntPtr rig, out int views);
        [DllImport(Library)] internal static extern int zelmMeasureRigCamera(IntPtr rig, int side, ref Camera camera);
        [DllImport(Library)]
        internal static extern int zelmMeasureRigPose(IntPtr rig, int side, int view, out CameraPose pose);
        [DllImport(Library)] internal static extern int zelmMeasureRigFundamental(IntPtr rig, [Out] double[] F);
        [DllImport(Library)]
        internal static extern int zelmMeasureRigRelativePose(IntPtr rig, ref RelativePose pose);
        [DllImport(Library)]
        internal static extern int zelmMeasureTriangulate(IntPtr rig, long count, double[] left, double[] right,
                                                          ref PointArrays points);
        [DllImport(Library)]
        internal static extern int zelmMeasureUndistort(IntPtr rig, int side, long count, double[] raw,
                                                        [Out] double[] undistorted);

        static Native()
        {
            Layout.Check(Layout.Expected);
            try
            {
                foreach (var method in typeof(Native).GetMethods(
                             System.Reflection.BindingFlags.Static | System.Reflection.BindingFlags.NonPublic))
                {
                    Marshal.Prelink(method);
                }
            }
            catch (Exception error) when (error is DllNotFoundException || error is EntryPointNotFoundException)
            {
                throw new ZelmLibraryException(
                    $"{Library} is missing or of another version ({error.Message}): install it, or set " +
                    "LD_LIBRARY_PATH to the folders that hold it and libzelmLib.so.1", error);
            }
        }
    }

    /// <summary>A calibrated pair of cameras. One call at a time: calls of several threads wait for each other.
    /// </summary>
    public sealed class Rig : IDisposable
    {
        private IntPtr handle = IntPtr.Zero;
        private readonly object guard = new object();

        /// <summary>Opens the calibration that `zelm calibrate` writes.</summary>
        public static Rig Load(string path)
        {
            byte[] block = File.ReadAllBytes(path);
            try
            {
                return new Rig(block);
            }
            catch (ZelmException error)
            {
                throw new ZelmException($"{path}: {error.Message}", error.Status);
            }
        }

        /// <summary>Opens a rig from a calibration block.</summary>
        public Rig(byte[] block)
        {
            try
            {
                int status = Native.zelmMeasureRigOpen(block, block.LongLength, ref handle);
                if (status < 0)
                {
                    string words = handle != IntPtr.Zero ? ErrorText() : "out of memory";
                    Dispose();
                    throw new ZelmException(words, status);
                }
            }
            catch (TypeInitializationException error) when (error.InnerException is ZelmLibraryException)
            {
                throw error.InnerException;
            }
        }

        ~Rig()
        {
            Dispose();
        }

        public void Dispose()
        {
            lock (guard)
            {
                if (handle != IntPtr.Zero)
                {
                    Native.zelmMeasureRigClose(ref handle);
                }
            }
            GC.SuppressFinalize(this);
        }

        /// <summary>The number of views that the rig was calibrated from.</summary>
        public int Views
        {
            get
            {
                int views = 0;
                Call(() => Native.zelmMeasureRigViews(handle, out views));
                return views;
            }
        }

        /// <summary>A camera: 'L' or 'R'.</summary>
        public Camera Camera(char side)
        {
            var camera = new Camera { Size = Marshal.SizeOf(typeof(Camera)) };
            Call(() => Native.zelmMeasureRigCamera(handle, side, ref camera));
            return camera;
        }

        /// <summary>The pose of a camera against the plate of a view.</summary>
        public CameraPose Pose(char side, int view = 0)
        {
            var pose = new CameraPose();
            Call(() => Native.zelmMeasureRigPose(handle, side, view, out pose));
            return pose;
        }

        /// <summary>F, row by row: x_left' F x_right = 0 for undistorted pixels.</summary>
        public double[] Fundamental()
        {
            var F = new double[9];
            Call(() => Native.zelmMeasureRigFundamental(handle, F));
            return F;
        }

        /// <summary>How the right camera stands to the left one.</summary>
        public RelativePose Relative()
        {
            var pose = new RelativePose { Size = Marshal.SizeOf(typeof(RelativePose)) };
            Call(() => Native.zelmMeasureRigRelativePose(handle, ref pose));
            return pose;
        }

        /// <summary>Points of space of pairs of raw pixels, a row x, y each.</summary>
        /// <param name="maxError">pixels by which the rays may miss each other; 0: nothing is a mismatch</param>
        /// <param name="outside">whether pixels outside of the images are told</param>
        public SpacePoints Triangulate(double[,] left, double[,] right, double maxError = 0, bool outside = true)
        {
            double[] flatLeft = Pixels(left), flatRight = Pixels(right);
            if (flatLeft.Length != flatRight.Length)
            {
                throw new ArgumentException($"{flatLeft.Length / 2} left pixels, {flatRight.Length / 2} right ones");
            }
            int count = flatLeft.Length / 2;
            var statuses = new int[count];
            double[] positions = Unknown(3 * count), errors = Unknown(2 * count), angles = Unknown(count);
            var pins = Array.ConvertAll(new Array[] { statuses, positions, errors, angles },
                                        array => GCHandle.Alloc(array, GCHandleType.Pinned));
            try
            {
                var points = new PointArrays
                {
                    Size = Marshal.SizeOf(typeof(PointArrays)),
                    Statuses = pins[0].AddrOfPinnedObject(),
                    Positions = pins[1].AddrOfPinnedObject(),
                    Errors = pins[2].AddrOfPinnedObject(),
                    Angles = pins[3].AddrOfPinnedObject(),
                    MaxError = maxError,
                    Outside = outside ? 1 : 0,
                };
                Call(() => Native.zelmMeasureTriangulate(handle, count, flatLeft, flatRight, ref points));
            }
            finally
            {
                Array.ForEach(pins, pin => pin.Free());
            }
            return new SpacePoints
            {
                Statuses = Array.ConvertAll(statuses, status => (PointStatus)status),
                Positions = Rows(positions, 3),
                Errors = Rows(errors, 2),
                Angles = angles,
            };
        }

        /// <summary>Raw pixels without the distortion of the lens, a row x, y each; NaN where it cannot be removed.
        /// </summary>
        public double[,] Undistort(char side, double[,] raw)
        {
            double[] pixels = Pixels(raw);
            var undistorted = new double[pixels.Length];
            Call(() => Native.zelmMeasureUndistort(handle, side, pixels.Length / 2, pixels, undistorted));
            return Rows(undistorted, 2);
        }

        private IntPtr Open()
        {
            return handle != IntPtr.Zero ? handle : throw new ObjectDisposedException(nameof(Rig));
        }

        private void Call(Func<int> function)
        {
            lock (guard)
            {
                Open();
                int status = function();
                if (status < 0)
                {
                    string words = ErrorText();
                    words = words.Length > 0 ? words : $"an argument cannot be meant ({status})";
                    throw new ZelmException(words, status);
                }
            }
        }

        private string ErrorText()
        {
            return Marshal.PtrToStringAnsi(Native.zelmMeasureRigError(handle)) ?? "";
        }

        private static double[] Pixels(double[,] rows)
        {
            if (rows.GetLength(1) != 2)
            {
                throw new ArgumentException($"pixels are rows of x, y; these have {rows.GetLength(1)} columns");
            }
            var flat = new double[rows.Length];
            Buffer.BlockCopy(rows, 0, flat, 0, rows.Length * sizeof(double));
            return flat;
        }

        private static double[,] Rows(double[] flat, int columns)
        {
            var rows = new double[flat.Length / columns, columns];
            Buffer.BlockCopy(flat, 0, rows, 0, flat.Length * sizeof(double));
            return rows;
        }

        private static double[] Unknown(int count)
        {
            var numbers = new double[count];
            Array.Fill(numbers, double.NaN);
            return numbers;
        }
    }
}
