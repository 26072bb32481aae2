// Measures a row of six patches and the spectrum of one more.
// Usage: Measure MODULE, the path of the spectrophotometer module. Exit status: 0 if everything was measured.
// Compile it together with Spm.cs. For .NET, put both into a console project in place of its Program.cs; for .NET
// Framework, use "csc /platform:x64 Measure.cs Spm.cs"; for Mono, "mcs Measure.cs Spm.cs".

using System;
using static System.FormattableString;

static class Measure
{
    const int Patches = 6;

    static void MeasureAll(Spectrophotometer instrument)
    {
        instrument.Open();
        instrument.Calibrate(
            () => Console.WriteLine("Place the instrument on its white reference and press the button within a minute."));

        Console.WriteLine("Press the button and slide the instrument along the row, within a minute.");
        var row = instrument.Read(Patches);
        foreach (var patch in row)
            Console.WriteLine(Invariant($"L* {patch.L,6:F2}  a* {patch.A,6:F2}  b* {patch.B,6:F2}"));
        if (row.Length < Patches) throw new SpmException("not all patches of the row were found");

        Console.WriteLine("Place the instrument on a patch and press the button within a minute.");
        foreach (var point in instrument.ReadSpectra(1)[0])
            Console.WriteLine(Invariant($"{point.Wavelength} nm {point.Value,6:F2} %"));
    }

    static int Main(string[] arguments)
    {
        try
        {
            if (arguments.Length != 1) throw new SpmException("usage: Measure MODULE");
            using (var instrument = new Spectrophotometer(arguments[0])) MeasureAll(instrument);
            return 0;
        }
        catch (SpmException failure)
        {
            Console.Error.WriteLine("Measure: " + failure.Message);
            return 1;
        }
    }
}
