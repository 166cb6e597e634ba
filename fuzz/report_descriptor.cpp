#include "Fuzzer.h"

#include <string>

#include "usb/ReportDescriptor.h"

/// No report is larger than the kernel lets it be, and an item that says nothing changes nothing.
void vantro::fuzz::look(std::string_view bytes)
{
    using namespace std::string_literals;
    const auto found = parseReportDescriptor(bytes);
    const auto padded = parseReportDescriptor("\xfe\x01\x10\xc0"s.append(bytes));
    expect(found.has_value() == padded.has_value());
    if (found && padded) {
        expect(found->maximumInputReportSize <= 16384 &&
               found->maximumInputReportSize == padded->maximumInputReportSize);
        expect(found->usagePage == padded->usagePage && found->usage == padded->usage);
    }
}
