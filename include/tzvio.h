/* TZVIO: the library through which a shop's till prints its receipts.
 *
 * This header is the manual. It declares every operation of libTZVIO.so.0; tzvio_state.h declares
 * the variables that the library exports.
 *
 * PORTS
 *   Every operation names its port by a NUL-terminated string of at most 99 characters. The
 *   beginning of the name chooses the link, the whole name (case-sensitive) the open port:
 *
 *     "/dev/usb/lp..." "/dev/usblp..."    USB printer-class device node
 *     "/dev/parport..." "/dev/lp..."      parallel port
 *     "/dev/ttyS..."                      serial line
 *     "SOCKET:192.168.0.10"               TCP connection to that IPv4 address
 *
 *   Up to 20 ports of each link may be open at once.
 *
 * SETTINGS
 *   Serial: five fields separated by commas, "baud,parity,data bits,stop bits,flow control":
 *     baud          115200 38400 19200 9600 4800 2400 (115200 is accepted and runs at 9600)
 *     parity        none even odd
 *     data bits     8 7
 *     stop bits     1 2
 *     flow control  none hdwr (hdwr: a write waits for the printer's DSR line)
 *   for example "9600,none,8,1,none"; no spaces, at most 99 characters.
 *   Network: the TCP port number in decimal. USB, parallel: not looked at, may be NULL.
 *
 * RESULT CODES
 *   Every operation returns a long. What each value means is listed with the operation; in short:
 *      0   success
 *     >0   a count of bytes, a status code (TZV_STATUS_...), or as the operation says
 *     -1   the port is not open; the device could not be opened; no or a malformed answer; a
 *          null pointer or a negative size
 *     -2   a write, read or line call failed, or the printer is in an error state
 *     -3   no link accepts the port name (NULL included), the link does not supply the
 *          operation, or the settings are not accepted
 *   The printer is in an error state while its cover is open, its paper is out, it is offline or
 *   its cutter is jammed. Only a status monitor (ClaimDevice) finds out about that.
 *
 * WHAT "0" DOES NOT SAY
 *   PrintNormal and the other print operations return 0 when the request was in order, whatever
 *   became of the bytes. Whether a receipt is on paper is known only from a transaction's end.
 *
 * TRANSACTIONS
 *   TransactionPrint(port, 1) begins one: from then on everything that prints, cuts or opens the
 *   drawer on any port of that link is collected in memory (up to 1664000 bytes) instead of sent.
 *   TransactionPrint(port, 0) ends it: sends the whole, asks the printer to confirm, and waits
 *   for the confirmation, which the monitor sees. 0 means printed. So ClaimDevice comes first, and
 *   then a wait until GetError gives 0: a claimed printer counts as offline, and output is
 *   refused, until the monitor's first cycle.
 *   The printer confirms what it has received since it was switched on. Without a confirmation
 *   for a second it is asked again, so one that lost power and came back within the wait confirms
 *   from an empty memory. A serial line shows lost power on DSR, and the end is 4 then; where
 *   there is no DSR line (an adapter, a pseudo-terminal) this case cannot be told.
 *   A network connection that is lost while the job is being sent is made anew, and the whole job
 *   is sent again; one that is found lost afterwards makes the end 4.
 *   After another result the job stays collected: ending again sends it again, beginning drops it.
 *
 * THREADS
 *   Operations may be called from any thread. All ports of one link share one set of settings,
 *   flags and buffers (tzvio_state.h), and nothing locks them: use the ports of one link from one
 *   thread at a time, or make sure that no two threads print at once. Different links are
 *   independent. ClaimDevice starts one monitor thread, which only reads the printer's reports
 *   and writes the status flags. The library raises no signal and installs no handler.
 */
#ifndef TZVIO_H
#define TZVIO_H

#define TZV_VERSION "0.1.0"

#define TZV_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* Result codes below 0. */
enum {
  TZV_FAILED = -1,      /* not open, no device, no answer, bad argument */
  TZV_REFUSED = -2,     /* error state, or a write, read or line call failed */
  TZV_NOT_ACCEPTED = -3 /* port name, operation or settings */
};

/* Status codes, one at a time by priority, from OpenPort, GetPrinterStatus, GetError and the end
 * of a transaction. */
enum {
  TZV_STATUS_OK = 0,
  TZV_STATUS_COVER_OPEN = 1,
  TZV_STATUS_PAPER_EMPTY = 2,
  TZV_STATUS_OFFLINE = 4,
  TZV_STATUS_PAPER_NEAR_EMPTY = 8,
  TZV_STATUS_CUTTER_JAM = 16,
  TZV_STATUS_SENSOR_1 = 32,
  TZV_STATUS_SENSOR_2 = 64,
  TZV_STATUS_SENSOR_3 = 128
};

/* `Alignment`, and the `Position` of WritePortPosition. */
enum { TZV_ALIGN_LEFT = 0, TZV_ALIGN_CENTER = 1, TZV_ALIGN_RIGHT = 2 };

/* `TextPosition`: where a barcode's text stands. */
enum { TZV_TEXT_NONE = 0, TZV_TEXT_ABOVE = 1, TZV_TEXT_BELOW = 2 };

/* The unit of lengths (the `MapMode` variables of tzvio_state.h); a dot is 0.141 mm. */
enum {
  TZV_MAP_DOTS = 0,
  TZV_MAP_TWIPS = 1,   /* 1/1440 inch */
  TZV_MAP_ENGLISH = 2, /* 1/1000 inch */
  TZV_MAP_METRIC = 3   /* 1/100 mm */
};

/* `PrintMode` of TransactionPrint. */
enum { TZV_TRANSACTION_END = 0, TZV_TRANSACTION_BEGIN = 1 };

/* `Symbology` of PrintBarCode. */
enum {
  TZV_BARCODE_UPCA = 101,
  TZV_BARCODE_UPCE = 102,
  TZV_BARCODE_EAN8 = 103,
  TZV_BARCODE_EAN13 = 104,
  TZV_BARCODE_JAN8 = 105,  /* prints as EAN-8 */
  TZV_BARCODE_JAN13 = 106, /* prints as EAN-13 */
  TZV_BARCODE_ITF = 107,
  TZV_BARCODE_CODABAR = 108,
  TZV_BARCODE_CODE39 = 109,
  TZV_BARCODE_CODE93 = 110,
  TZV_BARCODE_CODE128 = 111
};

/* `Symbology` of Print2DBarCode and Print2DBarCodeXY. */
enum { TZV_BARCODE_PDF417 = 200, TZV_BARCODE_QRCODE = 201 };

/* ------------------------------------------------------------------------------ the port */

/* Opens a port and asks the printer for its state.
 *
 * portName      as above; 1 to 99 characters
 * portSettings  as above; at most 99 characters
 *
 * Sends DLE EOT 2 and DLE EOT 4 (10 04 02, 10 04 04) and waits for the answers. Serial: up to
 * 0.5 s to drain the line and 1.2 s for each answer. Parallel: 0.4 s for each. Network: connecting
 * takes up to 1 s. On USB and network the reads block: a printer that is there but never answers
 * is waited for without end.
 *
 *  0  open and ready; or the name was open already: then nothing happens, and the first
 *     settings stay
 *  1  open, the cover is open
 *  2  open, paper is out
 * -1  all 20 ports are in use, the name is too long or the device cannot be opened (not open);
 *     or the printer does not answer (then the port is open all the same)
 * -2  the line cannot be configured (not open)
 * -3  no link accepts the name, or the settings are not accepted (not open)
 */
TZV_API long OpenPort(const char* portName, const char* portSettings);

/* Closes a port; what is collected and the reprint and protocol modes of its link are dropped.
 * A running monitor goes on until ReleaseDevice.
 *
 *  0  closed
 * -1  the port is not open
 */
TZV_API long ClosePort(const char* portName);

/* Sends bytes as they are, past any transaction.
 *
 * writeBuffer  the bytes
 * length       how many, 0 or more
 *
 * A network connection that was lost is made anew first (see InitNET); the bytes are then sent
 * whole, in one send, whose result is returned.
 *
 * >=0  the bytes written. Fewer than `length`: the printer took none for 5 s (serial line with
 *      hardware flow control, parallel port, USB)
 *  -1  the port is not open, writeBuffer is NULL or length negative: nothing sent
 *  -2  the printer is in an error state (nothing sent), the link failed, or a lost connection could
 *      not be made anew
 *  Network: the results of its sends are added up as they are, so a connection that is lost on the
 *  way may leave a count below 0 or above `length`.
 */
TZV_API long WritePort(const char* portName, const char* writeBuffer, long length);

/* Reads what the printer sent. Serial: waits for 200 ms of silence. Parallel: does not wait. USB:
 * waits 200 ms, then until the printer sends something. Network: until the printer sends something.
 *
 * readBuffer  room for `length` bytes; no NUL is added
 * length      0 or more; 0 returns 0 without touching the line
 *
 * >=0  the bytes read; 0 on a network: the printer has shut the connection down
 *  -1  the port is not open, readBuffer is NULL or length negative; or the read failed (USB,
 *      network)
 *  -2  nothing came, or the link failed (serial); the printer does not answer (parallel)
 */
TZV_API long ReadPort(const char* portName, char* readBuffer, long length);

/* ---------------------------------------------------------------------------- the status */

/* Asks the printer for its paper sensors ("\x1b#SENSOR") and returns the most important
 * condition known. While a monitor runs and knows of an error state, nothing is sent.
 * A printer that stays silent costs up to 16 s on a serial line; the result then comes from
 * what is known.
 *
 *  0, 1, 2, 4, 8, 16, 32, 64, 128  a status code
 * -1  the port is not open, or the printer's answer is malformed
 */
TZV_API long GetPrinterStatus(const char* portName);

/* Returns the most important condition that the monitor has seen; sends nothing. A printer that is
 * switched offline by hand, with nothing else the matter, reports itself as healthy, and counts as
 * that.
 *
 *  0, 1, 2, 4, 8, 16  a status code; 4 also when the printer's power is off
 * -1  the port is not open
 */
TZV_API long GetError(const char* portName);

/* Returns the cash drawer's state as the monitor last saw it; sends nothing.
 *
 *  0  closed
 *  1  open
 * -1  the port is not open
 */
TZV_API long GetDrawerStatus(const char* portName);

/* Starts the status monitor of the port: a thread that has the printer report every change
 * (GS a 255), and keeps the status flags. Needed before a transaction can be confirmed.
 *
 * The printer's first report arrives within the 100 ms after GetError has become 0; a query made
 * in that time may read it in front of its answer. An empty transaction that ends with 0 is past
 * it.
 *
 * TimeoutMillis  not used
 *
 *  0  the monitor runs
 * -1  the port is not open
 * When no thread can be created the process ends with exit status 255.
 */
TZV_API long ClaimDevice(const char* portName, long TimeoutMillis);

/* Makes a lost network connection anew and has it monitored. Every write to a port whose monitor
 * saw the connection lost does so by itself, stopping the monitor first and waiting a second
 * afterwards; applications need not call this.
 *
 * Closes what the port had, connects within 1 s, sends the line "LINK\n", and starts the monitor
 * of the port as ClaimDevice does. A connection that comes about within the connecting call itself
 * gets neither line nor monitor.
 *
 *  0  connected
 * -1  no network port of that name is open, the printer cannot be reached (the port stays open,
 *     and the next write tries again), or no thread can be created
 */
TZV_API long InitNET(const char* portName);

/* Tells the monitors of all ports of the link to end; they do within one cycle (500 ms).
 * Waits 1 s on a parallel port. On a network it has the printer report once more (GS a 255) and
 * waits 300 ms.
 *
 *  0  told
 * -1  the port is not open
 */
TZV_API long ReleaseDevice(const char* portName);

/* -------------------------------------------------------------------------- transactions */

/* Begins or ends a transaction; see TRANSACTIONS above.
 *
 * PrintMode  above 0: begin, dropping what was collected before. 0: end. Below 0: end, but what
 *            is printed from then on is still collected
 *
 * Begin collects ESC @ (1B 40) and returns
 *  0  collecting
 * -1  the port is not open
 * End sends what was collected and the process-ID request (GS ( H, 11 bytes), repeats the
 * request after each second without a confirmation, and returns
 *  0  confirmed: everything is printed
 *  1, 2, 4, 16  the printer went into that error state: not confirmed
 *  4  not confirmed after three requests, or no monitor runs
 * -1  the port is not open
 */
TZV_API long TransactionPrint(const char* portName, long PrintMode);

/* Switches reprint mode: while it is on, everything printed is collected, and the monitor sends
 * it whenever the printer reports itself healthy, until the printer confirms it.
 *
 * RePrint  0 off, any other value on
 *
 *  0  stored
 * -1  the port is not open
 */
TZV_API long SetRePrintMode(const char* portName, long RePrint);

/* Switches the framed protocol: a transaction then travels in one "#FRAME" frame with a length
 * and a checksum.
 *
 * protocol  0 off, any other value on
 *
 *  0  stored
 * -1  the port is not open
 */
TZV_API long SetProtocol(const char* portName, long protocol);

/* ---------------------------------------------------------------------------------- text */

/* Prints text. Escape sequences in it choose its look; they are written ESC (1B), '|', a number
 * where # stands, and letters:
 *
 *   |cA |rA          centre, right; at the start of a line only
 *   |1C |2C |3C |4C  normal, double width, double height, both
 *   |#hC |#vC        width and height, # from 1 to 8
 *   |bC |rvC         bold, reversed
 *   |#uC             underline, # 1 (or none) or 2 dots
 *   |N               back to normal
 *   |#lF |#uF        feed # lines, # units of the `MapMode` variable
 *   |#P |#fP         cut, feed and cut
 *   |#sP |#sC |#rF |rC |iC |#fT |bL |sL |tL   accepted, without effect
 *   anything else    ESC and '|' go to the printer, the rest is text
 *
 * Attributes last for one call. The variables RecLineChars, RecLineSpacing, RecLinesToPaperCut,
 * MapMode and RotateCtrl of the link (tzvio_state.h) apply.
 *
 * writeBuffer  NUL-terminated, of any length
 *
 * Sends a 15-byte reset, ESC 3 n (line spacing) and the translated text in one write.
 *
 *  0  translated and handed on. Whether it was sent or refused in an error state does not show
 * -1  the port is not open or writeBuffer is NULL: nothing sent
 * -2  the translation exceeds 1664000 bytes or memory is short: nothing sent
 */
TZV_API long PrintNormal(const char* portName, const char* writeBuffer);

/* PrintNormal for text of a given length, which may hold NUL bytes: each is sent, and counts as
 * one column.
 *
 * writeBuffer  the text
 * wlen         its length in bytes, 0 or more
 *
 *  0, -1  as PrintNormal
 * -2      as PrintNormal, or wlen is negative
 */
TZV_API long PrintNormalSize(const char* portName, const char* writeBuffer, long wlen);

/* Enters page mode (ESC L): what follows is placed on a page that EndPageMode prints. The library
 * does not remember the mode.
 *
 *  0  handed on; a link that failed does not show
 * -1  the port is not open
 * -2  the printer is in an error state; within a transaction the command is collected anyway
 */
TZV_API long StartPageMode(const char* portName);

/* Prints the page and leaves page mode (ESC FF, ESC S). Results as StartPageMode. */
TZV_API long EndPageMode(const char* portName);

/* Places one line of plain text on the page: GS } X, GS } Y, the text, LF; four writes. Escape
 * sequences are not translated, and columns are not counted.
 *
 * writeBuffer  NUL-terminated
 * PosX, PosY   position in dots, 0 to 65535
 *
 * Results as StartPageMode; -1 also when writeBuffer is NULL.
 */
TZV_API long PrintTextXY(const char* portName, const char* writeBuffer, long PosX, long PosY);

/* -------------------------------------------------------------------------------- images */

/* Prints a BMP file dot for dot: downloads it (GS * x y and the dots), justifies (ESC a), prints
 * (GS / 0); three writes.
 *
 * Bitmap     path of the file: not compressed, its lowest row first as usual (a file with its top
 *            row first prints blank). What is black depends on the bits per pixel:
 *              1         the set bits; the others when the first colour is black
 *              4         the numbers 0 to 7, and every other pixel, from the first on
 *              8         the numbers 0 to 127; the width must be a multiple of four
 *              16 24 32  what is dark
 *            Use 1 or 24 bits where there is a choice
 * Alignment  TZV_ALIGN_...; any other value centres
 *
 *  0  handed on. Whether it was sent or refused in an error state does not show
 * -1  the port is not open, Bitmap is NULL, the file cannot be used or memory is short (a line on
 *     standard output says why, but for a few faults within the file), or the picture is larger
 *     than 2880 squares of 8 by 8 dots: nothing sent
 */
TZV_API long PrintBitmap(const char* portName, const char* Bitmap, long Alignment);

/* Stores BMP files, as PrintBitmap takes them but of any size, in the printer's memory in place of
 * all that was stored: ESC @, FS q n, then for each its size (width and height in units of 8 dots,
 * 16 bits each, low byte first) and its dots. Sent at once, even within a transaction.
 *
 * BitmapList  file names, each followed by '|' (what follows the last '|' is no name); at most 32
 *             names of at most 127 characters
 * ImageMode   not used
 *
 *  0  sent, or the link failed
 * -1  the port is not open, BitmapList is NULL, too many or too long names (nothing sent), or a
 *     file cannot be used (the images before it are sent, and the printer waits for the rest)
 * -2  the printer is in an error state: nothing sent
 */
TZV_API long SaveNVBitmap(const char* portName, const char* BitmapList, long ImageMode);

/* Prints a stored image in normal size: ESC a, FS p n 0; two writes.
 *
 * NVImageNumber  from 1, in the order of the list that stored it; the low 8 bits count
 * Alignment      TZV_ALIGN_...; any other value centres
 *
 *  0  handed on
 * -1  the port is not open
 * -2  the printer is in an error state; within a transaction the commands are collected anyway
 */
TZV_API long PrintNVBitmap(const char* portName, long NVImageNumber, long Alignment);

/* Places a stored image on the page: GS } X, GS } Y, FS p n 0, LF; four writes.
 *
 * NVImageNumber  as PrintNVBitmap
 * PosX, PosY     position in dots, 0 to 65535
 *
 * Results as PrintNVBitmap.
 */
TZV_API long PrintNVBitmapXY(const char* portName, long NVImageNumber, long PosX, long PosY);

/* Erases all stored images (FS e). Sent at once, even within a transaction.
 *
 *  0  sent, or the link failed
 * -1  the port is not open
 * -2  the printer is in an error state: nothing sent
 */
TZV_API long DeleteNVBitmap(const char* portName);

/* ------------------------------------------------------------------------------ barcodes */

/* Prints a linear barcode (GS w, GS h, justification, GS H, GS k).
 *
 * BarcodeData   NUL-terminated; sent as it is, the printer adds check digits and start and stop
 * Symbology     TZV_BARCODE_UPCA to TZV_BARCODE_CODE128
 * Height        of the bars, in units of the `MapMode` variable
 * Width         of the symbol, in the same unit; chooses the module width, 2 to 6 dots. As a
 *               number it must not exceed the `RecLineWidth` variable
 * Alignment     TZV_ALIGN_LEFT or TZV_ALIGN_CENTER; TZV_ALIGN_RIGHT leaves the justification as
 *               it was and chooses the third text font; any other value centres
 * TextPosition  TZV_TEXT_...
 *
 *  0  handed on, or not printable as asked (unknown symbology or text position, too wide, data
 *     of a wrong length, data NULL): then nothing is sent
 * -1  the port is not open
 */
TZV_API long PrintBarCode(const char* portName, const char* BarcodeData, long Symbology,
                          long Height, long Width, long Alignment, long TextPosition);

/* Prints a PDF417 or QR Code symbol (justification, GS ( k).
 *
 * BarcodeData  the data
 * DataLength   its length in bytes, at most 8092; 0: up to the NUL
 * Symbology    TZV_BARCODE_PDF417 or TZV_BARCODE_QRCODE
 * Param1       PDF417: data columns. QR Code: module size in dots. The low 8 bits count
 * Param2       PDF417: module width in dots. QR Code: error correction 0 to 3 (L, M, Q, H)
 * Alignment    TZV_ALIGN_...; any other value centres
 *
 *  0  handed on, or an unknown symbology or bad length: then nothing is sent
 * -1  the port is not open
 * -2  the printer is in an error state; the symbol is handed on all the same
 */
TZV_API long Print2DBarCode(const char* portName, const char* BarcodeData, long DataLength,
                            long Symbology, long Param1, long Param2, long Alignment);

/* Places a QR Code on the page (GS ( k, GS } X, GS } Y). TZV_BARCODE_PDF417 prints a QR Code too,
 * with Param1 as its model and Param2 as its module size.
 *
 * PosX, PosY  position in dots, 0 to 65535
 *
 * Other arguments as Print2DBarCode. Results as Print2DBarCode.
 */
TZV_API long Print2DBarCodeXY(const char* portName, const char* BarcodeData, long DataLength,
                              long Symbology, long Param1, long Param2, long PosX, long PosY);

/* ----------------------------------------------------------------- paper, drawer, signals */

/* Feeds five lines and cuts the paper (LF x 5, ESC i or ESC m).
 *
 * Percent  100: full cut; any other value: partial cut
 *
 *  0  handed on
 * -1  the port is not open
 * -2  the printer is in an error state (within a transaction the cut is collected anyway), or
 *     the write fell short
 */
TZV_API long CutPaper(const char* portName, long Percent);

/* Sets the justification of what follows (ESC a).
 *
 * Position  TZV_ALIGN_LEFT, TZV_ALIGN_RIGHT; any other value centres
 *
 *  0  handed on
 * -1  the port is not open
 */
TZV_API long WritePortPosition(const char* portName, long Position);

/* Opens the cash drawer (ESC p) unless the monitor knows it to be open.
 *
 *  0  handed on, or open already
 * -1  the port is not open
 * -2  the printer is in an error state (the pulse is handed on all the same), or the write fell
 *     short
 */
TZV_API long OpenCashDrawer(const char* portName);

/* Sounds the warning beeper ("\x1b#ERROR").
 *
 *  0  sent
 * -1  the port is not open, paper is out, the cover is open, or the write was refused or failed
 */
TZV_API long WarningBeep(const char* portName);

/* Starts a self-test menu ("\x1b#MENU1", "\x1b#MENU2").
 *
 * SelfNum  1 or 2
 *
 *  0  sent
 * -1  as WarningBeep, or another SelfNum
 */
TZV_API long SelfTest(const char* portName, long SelfNum);

/* Asks whether the black-mark sensor sees a mark ("\x1b#BM?").
 *
 *  0, 1, 2  the printer's answer: "BM", "BB", another
 * -1  the port is not open, paper is out, the cover is open, or no answer
 */
TZV_API long CheckBlackMark(const char* portName);

/* ------------------------------------------------------------------------------ identity */

/* Sends a command of the caller's own.
 *
 * CustomData  the bytes
 * datasize    how many, 0 to 128
 *
 *  0  the write did not return 0; a refused or failed write counts as success
 * -1  the port is not open, paper is out, the cover is open, nothing was written, or a bad
 *     argument
 */
TZV_API long SetData(const char* portName, const char* CustomData, long datasize);

/* Sends a command of the caller's own and reads the answer.
 *
 * CustomData  the bytes
 * datasize    how many, 0 to 128; 0 only reads
 * ReadBuffer  room for 256 bytes; no NUL is added
 *
 * >=0  the bytes read; 0: no answer
 *  -1  the port is not open, paper is out, the cover is open, or a bad argument
 */
TZV_API long GetData(const char* portName, const char* CustomData, long datasize, char* ReadBuffer);

/* Writes the printer's serial number (GS #) and reads its acknowledgement after one second.
 *
 * SerialNum     the bytes
 * SerialNumLen  how many, 0 to 123
 *
 *  0  acknowledged
 * -1  not acknowledged, the port is not open, paper is out, the cover is open, or a bad argument
 */
TZV_API long SetSerialNumber(const char* portName, const char* SerialNum, long SerialNumLen);

/* Reads the printer's serial number (GS I C). A printer that does not answer costs six seconds.
 *
 * ReadSerialNum  room for 256 bytes; no NUL is added
 *
 * >=0  the length of the serial number; 0: none recognised. An answer of another form gives its
 *      length less one, and nothing is stored
 *  -1  the port is not open, paper is out, the cover is open, or ReadSerialNum is NULL
 */
TZV_API long GetSerialNumber(const char* portName, char* ReadSerialNum);

/* Reads the firmware's version (GS I D).
 *
 * ReadVersion  room for 256 bytes; no NUL is added
 *
 * >0  the length of the version
 *  0  no answer that is a version; the seven characters "Unknown" are stored (or nothing, when the
 *     version is empty)
 * -1  the port is not open, paper is out, the cover is open, or ReadVersion is NULL
 */
TZV_API long GetFWVersion(const char* portName, char* ReadVersion);

/* Sends one region of a firmware image to the printer (GS ~, up to 524295 bytes).
 *
 * FWFile    path of the image
 * FileType  the region: 0, 1 or 2
 *
 *  0  sent, or the write was refused or failed; or the file cannot be opened (a line on standard
 *     output says so, nothing is sent)
 * -1  the port is not open (not told of a USB port), paper is out, the cover is open, nothing was
 *     written, or a bad argument
 */
TZV_API long UpdateFW(const char* portName, const char* FWFile, long FileType);

#ifdef __cplusplus
}
#endif

#endif
