// The spectrophotometer module and its listener library for C#: .NET Framework 4.6 or later, .NET 6 or later, and Mono,
// in a 64-bit process. Compile this file into the host. It declares what Spectrophotometer uses; SPM.h has the rest.
//
// How the libraries are found
//   new Spectrophotometer(path) loads the module by its absolute path, and the listener library from the same folder,
//   where the SDK library must be, too. The names in DllImport then refer to the loaded libraries, unless there are
//   other copies beside the program. This is the safe way: Windows searches neither the working folder nor PATH.
//   new Spectrophotometer() leaves the search to the runtime. Put the three libraries beside the program, or name their
//   folder with SetDllDirectory on Windows, LD_LIBRARY_PATH on Linux, or NativeLibrary.SetDllImportResolver in .NET 6.
//   On Linux, Mono needs a copy of Measure.exe.config named after the program in both cases: it expects library names
//   that start with "lib".

using System;
using System.Collections.Generic;
using System.ComponentModel;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Threading;

/// <summary>Says what failed and, if the module gave a reason, why.</summary>
public class SpmException : Exception
{
    public SpmException(string message) : base(message) { }
}

/// <summary>No instrument was found: ask the user to connect it, and open again.</summary>
public class NoInstrumentException : SpmException
{
    public NoInstrumentException() : base("not opened: no instrument was found") { }
}

public struct SpmOptionMasks { public uint Aperture, Illumination, Auxiliary, Mode, Reference; }
public struct SpmStatus { public uint Aperture, Illumination, Auxiliary; }
public struct SpmCalibration { public uint Aperture, Illumination, Auxiliary, Reference, Step; }
public struct SpmLab { public float L, A, B; }
public struct SpmReflection { public int Wavelength; public float Value; }

[StructLayout(LayoutKind.Sequential, Pack = 1)]
public struct SpmSpectrum { public int NumberOfReflections; public IntPtr Reflections; }

/// <summary>Receives the texts as pointers: the callback could not catch an exception of their conversion.</summary>
[UnmanagedFunctionPointer(CallingConvention.Cdecl)]
public delegate void SpmMessageCallback(
    IntPtr context, int level, int moduleNumber, int errorNumber, IntPtr text, IntPtr detail);

/// <summary>The functions of both libraries. Calls on one object must not overlap; objects share the SDK.</summary>
public static class Spm
{
    public const uint StepBegin = 0, StepContinue = 1, StepDone = 4; // SPM_STEP_...

    private const string Module = "spm_i1pro3", Listener = "spm_i1pro3_listener";
    private const CallingConvention C = CallingConvention.Cdecl;

    [DllImport(Module, CallingConvention = C)] public static extern uint SPM_getVersion(IntPtr none);
    [DllImport(Module, CallingConvention = C)] public static extern uint SPM_getMinorVersion();
    [DllImport(Module, CallingConvention = C)] public static extern IntPtr SPM_create();
    [DllImport(Module, CallingConvention = C)] public static extern void SPM_destroy(IntPtr handle);
    [DllImport(Module, CallingConvention = C)] public static extern SpmOptionMasks SPM_getOptionMasks(IntPtr handle);
    [DllImport(Module, CallingConvention = C)] [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool SPM_open(IntPtr handle, [MarshalAs(UnmanagedType.LPStr)] string device);
    [DllImport(Module, CallingConvention = C)] public static extern void SPM_close(IntPtr handle);
    [DllImport(Module, CallingConvention = C)] [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool SPM_isOpened(IntPtr handle);
    [DllImport(Module, CallingConvention = C)] public static extern SpmStatus SPM_getStatus(IntPtr handle);
    [DllImport(Module, CallingConvention = C)]
    public static extern void SPM_calibrate(IntPtr handle, ref SpmCalibration calibration);
    [DllImport(Module, CallingConvention = C)] [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool SPM_isCalibrated(IntPtr handle);
    [DllImport(Module, CallingConvention = C)] public static extern int SPM_getNumberOfReflections(IntPtr handle);
    [DllImport(Module, CallingConvention = C)] [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool SPM_read(IntPtr handle, [In, Out] SpmLab[] values, ref int count);
    [DllImport(Module, CallingConvention = C)] [return: MarshalAs(UnmanagedType.I1)]
    public static extern bool SPM_readSpectrum(IntPtr handle, [In, Out] SpmSpectrum[] spectra, ref int count);

    [DllImport(Listener, CallingConvention = C)]
    public static extern IntPtr SPM_subscribe(IntPtr handle, SpmMessageCallback callback, IntPtr context);
    [DllImport(Listener, CallingConvention = C)] public static extern void SPM_unsubscribe(IntPtr subscription);

    /// <summary>Loads the module and, from the same folder, the listener library; they stay loaded.</summary>
    public static void Load(string module)
    {
        string path = Path.GetFullPath(module);
        LoadLibrary(path);
        LoadLibrary(Path.ChangeExtension(path, null) + "_listener" + Path.GetExtension(path));
    }

    private static void LoadLibrary(string path)
    {
        if (Environment.OSVersion.Platform == PlatformID.Win32NT)
        {
            const uint ownFolder = 0x100, systemFolder = 0x800; // LOAD_LIBRARY_SEARCH_...: for what it needs
            if (LoadLibraryExW(path, IntPtr.Zero, ownFolder | systemFolder) == IntPtr.Zero)
                throw new SpmException("can't load " + path + ": " + new Win32Exception().Message);
        }
        else if (dlopen(path, 2 /* RTLD_NOW */) == IntPtr.Zero)
        {
            throw new SpmException("can't load " + Marshal.PtrToStringAnsi(dlerror()));
        }
    }

    [DllImport("kernel32", CharSet = CharSet.Unicode, SetLastError = true)]
    private static extern IntPtr LoadLibraryExW(string path, IntPtr reserved, uint flags);
    [DllImport("libdl.so.2")] private static extern IntPtr dlopen(string path, int flags);
    [DllImport("libdl.so.2")] private static extern IntPtr dlerror();
}

/// <summary>
/// An instrument. Use it from one thread at a time, and dispose of it: an object that is forgotten keeps its connection
/// until the process ends, since closing it from a finalizer would reset the SDK library under other objects. A host
/// with a user interface calls it on another thread, and passes a CancellationToken to stop waiting for the user.
/// </summary>
public sealed class Spectrophotometer : IDisposable
{
    private readonly List<string> errors = new List<string>(); // of the last call
    private readonly SpmMessageCallback callback; // keeps the delegate alive for as long as the module may call it
    private IntPtr handle, subscription;

    /// <summary>How long to wait until the user has pressed the button; a minute by default.</summary>
    public TimeSpan Patience { get; set; }

    // Mono searches for the libraries when it compiles a method that calls them. Inlined into a method that also calls
    // the constructor, these would be compiled before the constructor has loaded the libraries.
    private const MethodImplOptions Late = MethodImplOptions.NoInlining;

    /// <summary>The fourth component of the module's version, and the third. They need no open instrument.</summary>
    public uint Version { [MethodImpl(Late)] get { return Spm.SPM_getVersion(IntPtr.Zero); } }
    public uint MinorVersion { [MethodImpl(Late)] get { return Spm.SPM_getMinorVersion(); } }

    public SpmOptionMasks OptionMasks { [MethodImpl(Late)] get { return Spm.SPM_getOptionMasks(handle); } }
    public SpmStatus Status { [MethodImpl(Late)] get { return Spm.SPM_getStatus(handle); } }

    /// <summary>Takes a spot measurement to find out.</summary>
    public bool IsCalibrated { [MethodImpl(Late)] get { return Spm.SPM_isCalibrated(handle); } }

    /// <param name="module">the module's path; null leaves the search to the runtime</param>
    public Spectrophotometer(string module = null)
    {
        if (module != null) Spm.Load(module);
        Patience = TimeSpan.FromMinutes(1);
        callback = KeepError;
    }

    [MethodImpl(Late)]
    public void Dispose()
    {
        Spm.SPM_unsubscribe(subscription);
        Spm.SPM_close(handle);
        Spm.SPM_destroy(handle);
        handle = subscription = IntPtr.Zero;
    }

    /// <summary>
    /// Connects the instrument, also after the connection was lost; calibrate again afterwards. Uses a new module object
    /// each time: one that can't close its connection can't open another, and doesn't say why.
    /// </summary>
    public void Open()
    {
        Dispose();
        errors.Clear();
        handle = Spm.SPM_create();
        subscription = Spm.SPM_subscribe(handle, callback, IntPtr.Zero);
        if (subscription == IntPtr.Zero) throw new OutOfMemoryException();
        if (Spm.SPM_open(handle, "USB")) return;
        if (errors.Count == 0) throw new NoInstrumentException();
        throw Failure("not opened");
    }

    /// <param name="prompt">asks the user to place the instrument on its white reference and press the button</param>
    /// <param name="cancel">ends the wait for the user</param>
    public void Calibrate(Action prompt, CancellationToken cancel = default(CancellationToken))
    {
        errors.Clear();
        var dialogue = new SpmCalibration { Step = Spm.StepBegin };
        Spm.SPM_calibrate(handle, ref dialogue);
        if (dialogue.Step == Spm.StepContinue) prompt();
        for (var watch = Stopwatch.StartNew(); dialogue.Step == Spm.StepContinue;)
        {
            Wait(watch, cancel, "not calibrated: the button was not pressed");
            Spm.SPM_calibrate(handle, ref dialogue);
        }
        if (dialogue.Step != Spm.StepDone) throw Failure("not calibrated");
    }

    /// <summary>Measures a spot or a row. Returns fewer values if fewer patches of a row were found.</summary>
    public SpmLab[] Read(int patches, CancellationToken cancel = default(CancellationToken))
    {
        var values = new SpmLab[patches];
        int measured = Poll(patches, cancel, (ref int count) => Spm.SPM_read(handle, values, ref count));
        return values.Take(measured).ToArray();
    }

    /// <summary>Like Read, but returns the spectrum of each patch, from 380 nm to 730 nm.</summary>
    public SpmReflection[][] ReadSpectra(int patches, CancellationToken cancel = default(CancellationToken))
    {
        int points = Spm.SPM_getNumberOfReflections(handle);
        var spectra = Enumerable.Range(0, patches).Select(patch => new SpmReflection[points]).ToArray();
        var pins = spectra.Select(spectrum => GCHandle.Alloc(spectrum, GCHandleType.Pinned)).ToArray();
        try
        {
            var records = pins.Select(pin => new SpmSpectrum {
                NumberOfReflections = points, Reflections = pin.AddrOfPinnedObject() }).ToArray();
            int measured = Poll(patches, cancel, (ref int count) => Spm.SPM_readSpectrum(handle, records, ref count));
            return spectra.Take(measured).ToArray();
        }
        finally
        {
            foreach (var pin in pins) pin.Free();
        }
    }

    private delegate bool Reading(ref int count);

    /// <summary>Reads until the user has pressed the button. Returns the number of patches measured.</summary>
    private int Poll(int patches, CancellationToken cancel, Reading read)
    {
        if (patches < 1) throw new ArgumentOutOfRangeException("patches");
        for (var watch = Stopwatch.StartNew();;)
        {
            errors.Clear();
            int count = patches;
            if (!read(ref count)) throw Failure("not measured");
            if (count > 0) return count;
            if (!Spm.SPM_isOpened(handle)) throw Failure("not measured");
            Wait(watch, cancel, "not measured: the button was not pressed, or no patch found");
        }
    }

    private void Wait(Stopwatch watch, CancellationToken cancel, string failure)
    {
        if (watch.Elapsed > Patience) throw new SpmException(failure);
        cancel.WaitHandle.WaitOne(50);
        cancel.ThrowIfCancellationRequested();
    }

    private SpmException Failure(string what)
    {
        string otherwise = handle == IntPtr.Zero ? "the instrument is closed" : "the connection was lost";
        string reason = errors.Count > 0 ? string.Join("\n", errors) : otherwise;
        return new SpmException(what + ": " + reason);
    }

    /// <summary>Called by the listener library; must not throw.</summary>
    private void KeepError(IntPtr context, int level, int moduleNumber, int errorNumber, IntPtr text, IntPtr detail)
    {
        if (level != 0) return; // 1 is a warning, 2 information
        try
        {
            errors.Add((Marshal.PtrToStringAnsi(text) + " " + Marshal.PtrToStringAnsi(detail)).Trim());
        }
        catch (Exception error)
        {
            errors.Add("the instrument's message can't be read: " + error.Message);
        }
    }
}
