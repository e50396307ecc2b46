#include "catalog/logos/LogoDecoding.h"

#include <cstdint>
#include <cstdlib>

using namespace tickwise;

namespace {

/// Ends the run where a rule is broken.
void require(bool holds)
{
    if (!holds)
        std::abort();
}

void ignoreMessage(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(ignoreMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QImage> image = decodeLogo(bytes);
    require(!image || (!image->isNull() && image->width() <= logoPixels && image->height() <= logoPixels));
    return 0;
}
