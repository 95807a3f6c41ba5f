#include "support/all_operations.h"

#include "tzvio.h"

namespace testkit {

namespace {

thread_local char answer[256];

}  // namespace

const std::vector<Operation> kAllOperations = {
    {"OpenPort", [](const char* port) { return OpenPort(port, "9600,none,8,1,none"); }},
    {"WritePort", [](const char* port) { return WritePort(port, "x", 1); }},
    {"ReadPort", [](const char* port) { return ReadPort(port, answer, 1); }},
    {"GetPrinterStatus", [](const char* port) { return GetPrinterStatus(port); }},
    {"ClaimDevice", [](const char* port) { return ClaimDevice(port, 0); }},
    {"ReleaseDevice", [](const char* port) { return ReleaseDevice(port); }},
    {"CutPaper", [](const char* port) { return CutPaper(port, 100); }},
    {"WritePortPosition", [](const char* port) { return WritePortPosition(port, 0); }},
    {"ClosePort", [](const char* port) { return ClosePort(port); }},
    {"PrintNormal", [](const char* port) { return PrintNormal(port, "x"); }},
    {"PrintNormalSize", [](const char* port) { return PrintNormalSize(port, "x", 1); }},
    {"PrintBitmap", [](const char* port) { return PrintBitmap(port, "x.bmp", 0); }},
    {"PrintBarCode",
     [](const char* port) { return PrintBarCode(port, "12", TZV_BARCODE_ITF, 50, 300, 0, 0); }},
    {"Print2DBarCode",
     [](const char* port) { return Print2DBarCode(port, "x", 1, TZV_BARCODE_QRCODE, 4, 1, 0); }},
    {"SaveNVBitmap", [](const char* port) { return SaveNVBitmap(port, "", 0); }},
    {"PrintNVBitmap", [](const char* port) { return PrintNVBitmap(port, 1, 0); }},
    {"DeleteNVBitmap", [](const char* port) { return DeleteNVBitmap(port); }},
    {"OpenCashDrawer", [](const char* port) { return OpenCashDrawer(port); }},
    {"GetDrawerStatus", [](const char* port) { return GetDrawerStatus(port); }},
    {"UpdateFW", [](const char* port) { return UpdateFW(port, "x.bin", 0); }},
    {"SetData", [](const char* port) { return SetData(port, "x", 1); }},
    {"GetData", [](const char* port) { return GetData(port, "x", 1, answer); }},
    {"SetSerialNumber", [](const char* port) { return SetSerialNumber(port, "1", 1); }},
    {"GetSerialNumber", [](const char* port) { return GetSerialNumber(port, answer); }},
    {"SelfTest", [](const char* port) { return SelfTest(port, 1); }},
    {"CheckBlackMark", [](const char* port) { return CheckBlackMark(port); }},
    {"GetFWVersion", [](const char* port) { return GetFWVersion(port, answer); }},
    {"WarningBeep", [](const char* port) { return WarningBeep(port); }},
    {"TransactionPrint", [](const char* port) { return TransactionPrint(port, 1); }},
    {"SetRePrintMode", [](const char* port) { return SetRePrintMode(port, 0); }},
    {"SetProtocol", [](const char* port) { return SetProtocol(port, 0); }},
    {"StartPageMode", [](const char* port) { return StartPageMode(port); }},
    {"EndPageMode", [](const char* port) { return EndPageMode(port); }},
    {"Print2DBarCodeXY",
     [](const char* port) {
       return Print2DBarCodeXY(port, "x", 1, TZV_BARCODE_QRCODE, 4, 1, 0, 0);
     }},
    {"PrintNVBitmapXY", [](const char* port) { return PrintNVBitmapXY(port, 1, 0, 0); }},
    {"PrintTextXY", [](const char* port) { return PrintTextXY(port, "x", 0, 0); }},
    {"GetError", [](const char* port) { return GetError(port); }},
};

}  // namespace testkit
