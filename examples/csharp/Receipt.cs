// Prints a receipt as one confirmed transaction.
//
//     Receipt PORT SETTINGS
using System;
using System.Runtime.InteropServices;
using System.Threading;

static class Tzvio {
  const string Library = "libTZVIO.so.0";

  // A C long is as wide as a pointer, on 32 and on 64 bits; text is bytes, not UTF-16.
  [DllImport(Library)] public static extern IntPtr OpenPort(string port, string settings);
  [DllImport(Library)] public static extern IntPtr ClosePort(string port);
  [DllImport(Library)] public static extern IntPtr ClaimDevice(string port, IntPtr timeout);
  [DllImport(Library)] public static extern IntPtr ReleaseDevice(string port);
  [DllImport(Library)] public static extern IntPtr GetError(string port);
  [DllImport(Library)] public static extern IntPtr TransactionPrint(string port, IntPtr mode);
  [DllImport(Library)] public static extern IntPtr PrintNormal(string port, string text);
  [DllImport(Library)] public static extern IntPtr CutPaper(string port, IntPtr percent);
}

static class Receipt {
  static readonly IntPtr Begin = (IntPtr)1, End = (IntPtr)0;

  static readonly string[] Lines = {
    "\x1b|cA\x1b|4CCORNER SHOP\n\n",
    "  2 Coffee, ground, 500 g            11.80\n",
    "\x1b|rA\x1b|bC\x1b|2CTOTAL   11.80\n",
  };

  static void WaitUntilReady(string port) {
    for (int i = 0; i < 300 && (long)Tzvio.GetError(port) != 0; ++i) Thread.Sleep(100);
  }

  static int Main(string[] arguments) {
    string port = arguments[0];
    long opened = (long)Tzvio.OpenPort(port, arguments[1]);
    if (opened < 0) {
      Console.Error.WriteLine("cannot use {0}: {1}", port, opened);
      return 1;
    }
    Tzvio.ClaimDevice(port, IntPtr.Zero);
    WaitUntilReady(port);

    Tzvio.TransactionPrint(port, Begin);
    foreach (string line in Lines) Tzvio.PrintNormal(port, line);
    Tzvio.CutPaper(port, (IntPtr)100);
    long result = (long)Tzvio.TransactionPrint(port, End);

    Console.WriteLine(result == 0 ? "on paper" : "not confirmed: " + result);
    Tzvio.ReleaseDevice(port);
    Tzvio.ClosePort(port);
    return result == 0 ? 0 : 1;
  }
}
