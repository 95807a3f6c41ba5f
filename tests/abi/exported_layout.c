/* The layout of the exported records, which applications are compiled against. */
#include <assert.h>
#include <stddef.h>

#include "tzvio_state.h"

static_assert(offsetof(SerPort, set) == 0, "");
static_assert(offsetof(SerPort, portName) == 1, "");
static_assert(offsetof(SerPort, portSettings) == 101, "");
static_assert(offsetof(SerPort, port) == 204, "");
static_assert(offsetof(SerPort, originalPortSettings) == 208, "");
static_assert(sizeof(SerPort) == 216, "");

static_assert(offsetof(SerPortSettings, baud) == 0, "");
static_assert(offsetof(SerPortSettings, parity) == 4, "");
static_assert(offsetof(SerPortSettings, dataBits) == 5, "");
static_assert(offsetof(SerPortSettings, stopBits) == 6, "");
static_assert(offsetof(SerPortSettings, flowControl) == 7, "");

static_assert(offsetof(ParPort, portName) == 1, "");
static_assert(offsetof(ParPort, port) == 104, "");
static_assert(sizeof(ParPort) == 108, "");
static_assert(sizeof(USBPort) == sizeof(ParPort), "");

static_assert(offsetof(NETPort, portName) == 1, "");
static_assert(offsetof(NETPort, RealIP) == 101, "");
static_assert(offsetof(NETPort, sock) == 168, "");
static_assert(offsetof(NETPort, portnum) == 172, "");
static_assert(sizeof(NETPort) == 176, "");

static_assert(sizeof serPorts == 20 * sizeof(SerPort), "");
static_assert(sizeof s_PageBuffer == 1664000, "");
static_assert(sizeof s_ProtocolBuffer == 1667072, "");
static_assert(sizeof m_GetSensor == 128, "");
