// Compares zelm.cs with what a C program says of the same calibration: zelmTest rig.zcal reference.txt
using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using Zelm;

internal static class ZelmTest
{
    private static readonly Dictionary<string, double[]> Reference = new Dictionary<string, double[]>();
    private static int failures;
    private static int checks;

    private static int Main(string[] arguments)
    {
        foreach (string line in File.ReadAllLines(arguments[1]))
        {
            string[] words = line.Split(' ');
            Reference[words[0]] = words.Skip(1).Select(Number).ToArray();
        }
        CompareLayout();
        using (Rig rig = Rig.Load(arguments[0]))
        {
            CompareCameras(rig);
            ComparePoints(rig);
            RefuseArguments(rig);
        }
        FindNoUndistortedPixel(arguments[0]);
        RefuseFiles();
        CloseTwice(arguments[0]);
        Console.WriteLine($"zelm.cs: {checks - failures} of {checks} checks passed");
        return failures == 0 ? 0 : 1;
    }

    private static double Number(string word)
    {
        return word.EndsWith("nan") ? double.NaN : double.Parse(word, CultureInfo.InvariantCulture);
    }

    private static void Check(bool isGood, string what)
    {
        checks++;
        if (!isGood)
        {
            failures++;
            Console.Error.WriteLine($"zelm.cs: {what}");
        }
    }

    private static void Same(string name, params double[] found)
    {
        double[] expected = Reference[name];
        bool isSame = expected.Length == found.Length &&
                      expected.Zip(found, (a, b) => a.Equals(b)).All(same => same);
        Check(isSame, $"{name}: {string.Join(" ", found)}, not {string.Join(" ", expected)}");
    }

    private static void Throws<T>(Action action, string words) where T : Exception
    {
        try
        {
            action();
            Check(false, $"nothing thrown, {typeof(T).Name} with '{words}' expected");
        }
        catch (T error)
        {
            Check(error.Message.Contains(words), $"'{error.Message}' lacks '{words}'");
        }
    }

    private static void CompareLayout()
    {
        foreach (var entry in Layout.Expected)
        {
            string name = entry.Record == typeof(CameraIntrinsics) ? "ZelmCameraIntrinsics"
                : entry.Record == typeof(CameraPose) ? "ZelmCameraExtrinsics"
                : entry.Record == typeof(Camera) ? "ZelmMeasureCamera"
                : entry.Record == typeof(RelativePose) ? "ZelmMeasureRelativePose" : "ZelmMeasurePoints";
            Same($"size.{name}", Marshal.SizeOf(entry.Record));
        }
        Layout.Check(Layout.Expected);
        var longer = new RecordLayout(typeof(Camera), 200, "Intrinsics", 16);
        Throws<ZelmLibraryException>(() => Layout.Check(longer), "Camera has 192 bytes");
        var later = new RecordLayout(typeof(Camera), 192, "Intrinsics", 24);
        Throws<ZelmLibraryException>(() => Layout.Check(later), "Intrinsics at 16 here, not 192 and 24");
    }

    private static void CompareCameras(Rig rig)
    {
        Check(rig.Views == 1, "one view");
        foreach (char side in "LR")
        {
            Camera camera = rig.Camera(side);
            Same($"camera.{side}", camera.Model, camera.Width, camera.Height);
            CameraIntrinsics i = camera.Intrinsics;
            Same($"intrinsics.{side}", i.A.Concat(new[] { i.Alpha, i.Beta, i.Gamma, i.Cx, i.Cy, i.Theta, i.K1, i.K2 })
                     .ToArray());
            CameraPose pose = rig.Pose(side);
            Same($"pose.{side}", pose.R.Concat(pose.T).Concat(pose.RotationVector).ToArray());
        }
        RelativePose relative = rig.Relative();
        Same("relative.R", relative.R);
        Same("relative.t", relative.T);
        Same("baseline", relative.Baseline);
        Same("convergence", relative.Convergence);
        Same("F", rig.Fundamental());
    }

    private static void ComparePoints(Rig rig)
    {
        double[,] left = Rows("left"), right = Rows("right");
        SpacePoints points = rig.Triangulate(left, right, 5.0);
        Same("statuses", points.Statuses.Select(status => (double)status).ToArray());
        Same("positions", points.Positions.Cast<double>().ToArray());
        Same("errors", points.Errors.Cast<double>().ToArray());
        Same("angles", points.Angles);
        Same("undistorted.L", rig.Undistort('L', left).Cast<double>().ToArray());
        Same("undistorted.R", rig.Undistort('R', right).Cast<double>().ToArray());
        double[] truth = { 20, -15, 8 };  // the example of docs/formats.md, whose pixels have nine decimals
        bool isThere = Enumerable.Range(0, 3).All(i => Math.Abs(points.Positions[0, i] - truth[i]) < 1e-7);
        Check(isThere, "the point of the page");
        Check(rig.Triangulate(new double[0, 2], new double[0, 2]).Statuses.Length == 0, "no pixels, no points");
    }

    private static double[,] Rows(string name)
    {
        double[] flat = Reference[name];
        var rows = new double[flat.Length / 2, 2];
        Buffer.BlockCopy(flat, 0, rows, 0, flat.Length * sizeof(double));
        return rows;
    }

    private static void RefuseArguments(Rig rig)
    {
        Throws<ZelmException>(() => rig.Camera('X'), "");
        Throws<ZelmException>(() => rig.Pose('L', 7), "");
        Throws<ZelmException>(() => rig.Undistort('X', new double[1, 2]), "");
        Throws<ArgumentException>(() => rig.Triangulate(new double[2, 2], new double[3, 2]), "2 left pixels, 3 right");
        Throws<ArgumentException>(() => rig.Undistort('L', new double[2, 3]), "these have 3 columns");
    }

    // Without its k2 the lens of the left camera folds the image at 1.1 focal lengths from the principal point.
    private static void FindNoUndistortedPixel(string name)
    {
        const int k2Place = 460 + 16 * sizeof(double);
        byte[] block = File.ReadAllBytes(name);
        Array.Clear(block, k2Place, sizeof(double));
        using (var rig = new Rig(block))
        {
            double[,] found = rig.Undistort('L', new double[,] { { 2600, 480 }, { 640, 480 } });
            Check(double.IsNaN(found[0, 0]) && double.IsNaN(found[0, 1]), "no undistorted pixel beyond the fold");
            Check(found[1, 0] == 640 && found[1, 1] == 480, "the principal point stays");
        }
    }

    private static void RefuseFiles()
    {
        Throws<FileNotFoundException>(() => Rig.Load("none.zcal"), "none.zcal");
        string name = Path.GetTempFileName();
        File.WriteAllBytes(name, new byte[100]);
        Throws<ZelmException>(() => Rig.Load(name), name);
        File.Delete(name);
    }

    private static void CloseTwice(string name)
    {
        Rig rig = Rig.Load(name);
        rig.Dispose();
        rig.Dispose();
        Throws<ObjectDisposedException>(() => rig.Fundamental(), "Rig");
    }
}
