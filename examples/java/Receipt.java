// Prints a receipt as one confirmed transaction.
//
//     java -cp jna.jar:. Receipt PORT SETTINGS

import com.sun.jna.Library;
import com.sun.jna.Native;
import com.sun.jna.NativeLong;

public class Receipt {
  // A C long is a NativeLong, as wide as the library has it.
  interface Tzvio extends Library {
    NativeLong OpenPort(String port, String settings);
    NativeLong ClosePort(String port);
    NativeLong ClaimDevice(String port, NativeLong timeout);
    NativeLong ReleaseDevice(String port);
    NativeLong GetError(String port);
    NativeLong TransactionPrint(String port, NativeLong mode);
    NativeLong PrintNormal(String port, String text);
    NativeLong CutPaper(String port, NativeLong percent);
  }

  static final Tzvio TZVIO = Native.load("libTZVIO.so.0", Tzvio.class);
  static final NativeLong BEGIN = new NativeLong(1);
  static final NativeLong END = new NativeLong(0);

  static final String[] LINES = {
    "\u001b|cA\u001b|4CCORNER SHOP\n\n",
    "  2 Coffee, ground, 500 g            11.80\n",
    "\u001b|rA\u001b|bC\u001b|2CTOTAL   11.80\n",
  };

  static void waitUntilReady(String port) throws InterruptedException {
    for (int i = 0; i < 300 && TZVIO.GetError(port).longValue() != 0; ++i) Thread.sleep(100);
  }

  public static void main(String[] arguments) throws InterruptedException {
    String port = arguments[0];
    long opened = TZVIO.OpenPort(port, arguments[1]).longValue();
    if (opened < 0) {
      System.err.println("cannot use " + port + ": " + opened);
      System.exit(1);
    }
    TZVIO.ClaimDevice(port, new NativeLong(0));
    waitUntilReady(port);

    TZVIO.TransactionPrint(port, BEGIN);
    for (String line : LINES) TZVIO.PrintNormal(port, line);
    TZVIO.CutPaper(port, new NativeLong(100));
    long result = TZVIO.TransactionPrint(port, END).longValue();

    System.out.println(result == 0 ? "on paper" : "not confirmed: " + result);
    TZVIO.ReleaseDevice(port);
    TZVIO.ClosePort(port);
    System.exit(result == 0 ? 0 : 1);
  }
}
