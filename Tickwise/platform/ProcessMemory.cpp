#include "platform/ProcessMemory.h"

#include <QByteArrayList>
#include <QFile>

#include <optional>

#include <malloc.h>
#include <sys/mman.h>

namespace tickwise {

namespace {

/// More than the longest list that an exchange sends.
constexpr int pollBytes = 2 * 1024 * 1024;

/// The range of a mapping's first line ("begin-end permissions offset device inode path"); none when it can be written
/// or is no file.
std::optional<MemoryRange> readOnlyFile(const QByteArrayList &fields)
{
    const QByteArrayList bounds = fields.front().split('-');
    const bool isFile = fields.size() >= 6 && fields[5].startsWith('/');
    if (bounds.size() != 2 || !isFile || !fields[1].startsWith('r') || fields[1].contains('w'))
        return std::nullopt;
    const std::uintptr_t begin = bounds[0].toULongLong(nullptr, 16);
    const std::uintptr_t end = bounds[1].toULongLong(nullptr, 16);
    if (begin == 0 || end <= begin)
        return std::nullopt;
    return MemoryRange{begin, end - begin};
}

} // namespace

std::vector<MemoryRange> cleanFileMappings(QIODevice &smaps)
{
    std::vector<MemoryRange> clean;
    std::optional<MemoryRange> current;
    for (QByteArray line = smaps.readLine(); !line.isEmpty(); line = smaps.readLine()) {
        const QByteArrayList fields = line.simplified().split(' ');
        if (!fields.front().endsWith(':'))
            current = readOnlyFile(fields);
        else if (current && fields.front() == "Anonymous:" && fields.value(1) == "0")
            clean.push_back(*current);
    }
    return clean;
}

void keepMemoryOfPolls()
{
    mallopt(M_MMAP_THRESHOLD, pollBytes);
    mallopt(M_TRIM_THRESHOLD, pollBytes);
}

void releaseUnusedMemory()
{
    QFile smaps(QStringLiteral("/proc/self/smaps"));
    if (smaps.open(QIODevice::ReadOnly)) {
        for (const MemoryRange &range : cleanFileMappings(smaps))
            madvise(reinterpret_cast<void *>(range.begin), range.bytes, MADV_DONTNEED); // NOLINT: the kernel's number
    }
    malloc_trim(0);
}

} // namespace tickwise
