/* The variables that libTZVIO.so.0 exports.
 *
 * Each link (serial, parallel, USB, network) has its own set, shared by all of its ports. Writing
 * the text and unit settings is the only way to change them: they are read by the next call.
 *
 *     m_RecLineChars = 56;    serial ports print 56 columns from now on
 *
 * The status flags may be read at any time; the monitor of a claimed device writes them. Plain
 * reads and writes of these aligned integers are enough for an application: the library itself
 * accesses them atomically.
 *
 * The rows below are the one place where a field's type, its four names and its initial value
 * stand; the declarations, the definitions and the library's own access are made from them.
 */
#ifndef TZVIO_STATE_H
#define TZVIO_STATE_H

#include <pthread.h>

#include "tzvio.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes that a transaction can collect, and the frame that holds them. */
enum { TZV_PAGE_BUFFER_SIZE = 1664000, TZV_PROTOCOL_BUFFER_SIZE = 1667072 };

/* Ports of one link that can be open at once. */
enum { TZV_PORTS = 20 };

/* clang-format off */

/* NUMBER: type, field, names for serial, parallel, USB, network, initial value
 * BYTES:  size, field, the same names, initial value
 * THREAD: type, field, the same names
 */
#define TZV_STATE_FIELDS(NUMBER, BYTES, THREAD)                                                                                            \
  /* 1 while the status monitor runs; 0 tells it to end */                                                                                 \
  NUMBER(int,  StopIt,              SStopIt,                PStopIt,                UStopIt,                NStopIt,                0)      \
  /* the monitor's thread */                                                                                                               \
  THREAD(pthread_t,      thread,    s_thread,               p_thread,               u_thread,               n_thread)                      \
  THREAD(pthread_attr_t, attr,      s_attr,                 p_attr,                 u_attr,                 n_attr)                        \
  /* the sensor query that GetPrinterStatus sends, NUL-terminated */                                                                       \
  BYTES(128,   GetSensor,           m_GetSensor,            p_GetSensor,            u_GetSensor,            n_GetSensor,  "\x1b#SENSOR")   \
  /* printer family as the sensor reply told it: 0 or 1 */                                                                                 \
  NUMBER(long, DeviceType,          m_DeviceType,           p_DeviceType,           u_DeviceType,           n_DeviceType,           0)      \
  /* the paper sensor that the last sensor reply named; at most one is 1 */                                                                \
  NUMBER(int,  bSensor1,            m_bSensor1,             p_bSensor1,             u_bSensor1,             n_bSensor1,             0)      \
  NUMBER(int,  bSensor2,            m_bSensor2,             p_bSensor2,             u_bSensor2,             n_bSensor2,             0)      \
  NUMBER(int,  bSensor3,            m_bSensor3,             p_bSensor3,             u_bSensor3,             n_bSensor3,             0)      \
  /* 1 while a caller waits for an answer: the monitor does not read then */                                                               \
  NUMBER(int,  bStopThread,         m_bStopThread,          p_bStopThread,          u_bStopThread,          n_bStopThread,          0)      \
  /* SETTING: unit of lengths, TZV_MAP_... */                                                                                              \
  NUMBER(long, MapMode,             m_MapMode,              p_MapMode,              mu_MapMode,             mn_MapMode,             0)      \
  /* SETTING: characters per line, 42 or 56 (33 or 40 on two-colour printers) */                                                           \
  NUMBER(long, RecLineChars,        m_RecLineChars,         p_RecLineChars,         mu_RecLineChars,        mn_RecLineChars,        42)     \
  /* SETTING: width of a line in dots */                                                                                                   \
  NUMBER(long, RecLineWidth,        m_RecLineWidth,         p_RecLineWidth,         mu_RecLineWidth,        mn_RecLineWidth,        640)    \
  /* SETTING: not 0 while text is printed rotated: no line spacing is set then */                                                          \
  NUMBER(long, RotateCrCtrl,        m_RotateCrCtrl,         p_RotateCrCtrl,         mu_RotateCrCtrl,        mn_RotateCrCtrl,        0)      \
  NUMBER(long, RotateCtrl,          m_RotateCtrl,           p_RotateCtrl,           mu_RotateCtrl,          mn_RotateCtrl,          0)      \
  /* SETTING: line spacing in units of MapMode */                                                                                          \
  NUMBER(long, RecLineSpacing,      m_RecLineSpacing,       p_RecLineSpacing,       mu_RecLineSpacing,      mn_RecLineSpacing,      30)     \
  /* SETTING: lines fed before the cut of ESC |fP */                                                                                       \
  NUMBER(long, RecLinesToPaperCut,  m_RecLinesToPaperCut,   p_RecLinesToPaperCut,   mu_RecLinesToPaperCut,  mn_RecLinesToPaperCut,  5)      \
  /* columns of the widest line printed, and of the line that is still open */                                                             \
  NUMBER(long, RecSidewaysChars,    m_RecSidewaysChars,     p_RecSidewaysChars,     mu_RecSidewaysChars,    mn_RecSidewaysChars,    0)      \
  NUMBER(long, RecSidewaysCharsCur, m_RecSidewaysCharsCur,  p_RecSidewaysCharsCur,  mu_RecSidewaysCharsCur, mn_RecSidewaysCharsCur, 0)      \
  NUMBER(long, SaveDataLength,      m_SaveDataLength,       p_SaveDataLength,       mu_SaveDataLength,      mn_SaveDataLength,      0)      \
  /* 1 while a line is open: text without a line end was printed */                                                                        \
  NUMBER(long, SaveFlag,            m_SaveFlag,             p_SaveFlag,             mu_SaveFlag,            mn_SaveFlag,            0)      \
  /* what the monitor saw, 0 or 1 each */                                                                                                  \
  NUMBER(int,  bDrawerOpened,       m_bDrawerOpened,        p_bDrawerOpened,        u_bDrawerOpened,        n_bDrawerOpened,        0)      \
  NUMBER(int,  bCoverOpen,          m_bCoverOpen,           p_bCoverOpen,           u_bCoverOpen,           n_bCoverOpen,           0)      \
  NUMBER(int,  bPaperEmpty,         m_bPaperEmpty,          p_bPaperEmpty,          u_bPaperEmpty,          n_bPaperEmpty,          0)      \
  NUMBER(int,  bOffline,            m_bOffline,             p_bOffline,             u_bOffline,             n_bOffline,             0)      \
  NUMBER(int,  bPaperNearEmpty,     m_bPaperNearEmpty,      p_bPaperNearEmpty,      u_bPaperNearEmpty,      n_bPaperNearEmpty,      0)      \
  NUMBER(int,  bCutterJam,          m_bCutterJam,           p_bCutterJam,           u_bCutterJam,           n_bCutterJam,           0)      \
  /* the printer has no power (serial: its DSR line is down) or the link to it is lost */                                                  \
  NUMBER(int,  bPowerOFF,           m_bPowerOFF,            p_bPowerOFF,            u_bPowerOFF,            n_bPowerOFF,            0)      \
  /* modes of SetRePrintMode and SetProtocol */                                                                                            \
  NUMBER(int,  RePrint,             s_RePrint,              p_RePrint,              u_RePrint,              n_RePrint,              0)      \
  NUMBER(int,  bProtocol,           s_bProtocol,            p_bProtocol,            u_bProtocol,            n_bProtocol,            0)      \
  /* 1 when the printer confirmed the end of a transaction */                                                                              \
  NUMBER(int,  OutputComplemetFlag, s_OutputComplemetFlag,  p_OutputComplemetFlag,  u_OutputComplemetFlag,  n_OutputComplemetFlag,  0)      \
  /* 1 while a transaction waits: the monitor polls every 10 ms instead of 500 ms */                                                       \
  NUMBER(int,  bSleepFlag,          s_bSleepFlag,           p_bSleepFlag,           u_bSleepFlag,           n_bSleepFlag,           0)      \
  /* not 0 while a transaction collects */                                                                                                 \
  NUMBER(long, TransactionPrint,    s_TransactionPrint,     p_TransactionPrint,     u_TransactionPrint,     n_TransactionPrint,     0)      \
  /* bytes collected, and the bytes */                                                                                                     \
  NUMBER(long, PageSize,            s_PageSize,             p_PageSize,             u_PageSize,             n_PageSize,             0)      \
  BYTES(TZV_PAGE_BUFFER_SIZE,     PageBuffer,     s_PageBuffer,     p_PageBuffer,     u_PageBuffer,     n_PageBuffer,     "")              \
  /* the frame built from them */                                                                                                          \
  BYTES(TZV_PROTOCOL_BUFFER_SIZE, ProtocolBuffer, s_ProtocolBuffer, p_ProtocolBuffer, u_ProtocolBuffer, n_ProtocolBuffer, "")

/* clang-format on */

#define TZV_DECLARE_NUMBER(type, field, serial, parallel, usb, network, initial) \
  TZV_API extern type serial, parallel, usb, network;
#define TZV_DECLARE_BYTES(size, field, serial, parallel, usb, network, initial) \
  TZV_API extern char serial[size], parallel[size], usb[size], network[size];
#define TZV_DECLARE_THREAD(type, field, serial, parallel, usb, network) \
  TZV_API extern type serial, parallel, usb, network;

TZV_STATE_FIELDS(TZV_DECLARE_NUMBER, TZV_DECLARE_BYTES, TZV_DECLARE_THREAD)

/* USB only: cleared when a port opens or closes and before a frame is sent. */
TZV_API extern int u_bProtocolStatus;

/* Open ports. Applications may look; OpenPort and ClosePort write. */

/* Settings of a serial line; 0 leaves a setting as it is. */
typedef struct SerPortSettings {
  int baud;         /* bits per second */
  char parity;      /* 'n' none, 'e' even, 'o' odd */
  char dataBits;    /* 7 or 8 */
  char stopBits;    /* 1 or 2 */
  char flowControl; /* 'n' none, 'h' hardware: writes wait for DSR */
} SerPortSettings;

typedef struct SerPort {
  unsigned char set; /* 1 while the entry is in use */
  char portName[100];
  char portSettings[100];
  int port; /* file descriptor */
  SerPortSettings originalPortSettings;
} SerPort;

typedef struct ParPort {
  char set; /* 1 while the entry is in use */
  char portName[100];
  int port; /* file descriptor */
} ParPort;

typedef struct USBPort {
  char set; /* 1 while the entry is in use */
  char portName[100];
  int port; /* file descriptor */
} USBPort;

typedef struct NETPort {
  char set; /* 1 while the entry is in use */
  char portName[100];
  char RealIP[64]; /* IPv4 address in dotted-decimal text */
  int sock;        /* file descriptor */
  int portnum;     /* TCP port */
} NETPort;

TZV_API extern SerPort serPorts[TZV_PORTS];
TZV_API extern ParPort parPorts[TZV_PORTS];
TZV_API extern USBPort usbPorts[TZV_PORTS];
TZV_API extern NETPort netPorts[TZV_PORTS];

/* The status monitor of a network port as the body of a thread: ClaimDevice and InitNET start it,
 * applications need not. Monitors the port on the calling thread until NStopIt is 0 or the
 * connection is lost; returns at once when a monitor serves the port already.
 *
 * netPort  a NETPort, of which the portName is looked at; may be NULL: returns at once
 *
 * NULL
 */
TZV_API void* NetStatusHandler(void* netPort);

#ifdef __cplusplus
}
#endif

#endif
