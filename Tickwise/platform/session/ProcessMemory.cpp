#include "platform/session/ProcessMemory.h"

#include <QByteArrayList>
#include <QFile>

#include <optional>
#include <span>

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

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

bool contains(const dl_phdr_info &object, const ElfW(Phdr) & segment, const MemoryRange &range)
{
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = (object.dlpi_addr + segment.p_vaddr) & ~(page - 1);
    const std::uintptr_t end = object.dlpi_addr + segment.p_vaddr + segment.p_memsz + page - 1;
    return range.begin >= begin && range.begin + range.bytes <= (end & ~(page - 1));
}

// Called with the loader's lock held: while another thread loads or unloads a library, something else may lie where the
// list of mappings had one. What the loader says is loaded and unwritable is still there.
int releaseWithin(dl_phdr_info *object, std::size_t, void *clean)
{
    for (const ElfW(Phdr) & segment : std::span(object->dlpi_phdr, object->dlpi_phnum)) {
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0)
            continue;
        for (const MemoryRange &range : *static_cast<const std::vector<MemoryRange> *>(clean)) {
            if (contains(*object, segment, range))
                madvise(reinterpret_cast<void *>(range.begin), range.bytes, MADV_DONTNEED); // NOLINT: an address
        }
    }
    return 0;
}

} // namespace

std::vector<MemoryRange> cleanFileMappings(QIODevice &smaps)
{
    std::vector<MemoryRange> clean;
    std::optional<MemoryRange> current;
    bool isUnwritten = false;
    for (QByteArray line = smaps.readLine(); !line.isEmpty(); line = smaps.readLine()) {
        const QByteArrayList fields = line.simplified().split(' ');
        if (!fields.front().endsWith(':'))
            current = readOnlyFile(fields);
        else if (fields.front() == "Anonymous:")
            isUnwritten = fields.value(1) == "0";
        else if (current && isUnwritten && fields.front() == "Swap:" && fields.value(1) == "0")
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
        std::vector<MemoryRange> clean = cleanFileMappings(smaps);
        dl_iterate_phdr(&releaseWithin, &clean);
    }
    malloc_trim(0);
}

} // namespace tickwise
