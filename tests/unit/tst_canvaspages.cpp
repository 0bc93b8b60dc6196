#include "canvaspages.h"

#include "files.h"

#include <QRegularExpression>
#include <QtTest>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

using projection::PixelRange;
using projection::PixelRanges;

namespace
{

constexpr size_t megabyte = size_t(1) << 20;
constexpr size_t largeBytes = 64 * megabyte;

/// Zeroed memory that nothing has touched.
class FreshMemory
{
public:
    explicit FreshMemory(size_t bytes)
        : m_bytes(bytes), m_memory(std::calloc(bytes, 1)), m_pageBytes(size_t(sysconf(_SC_PAGESIZE)))
    {
        if (!m_memory)
            qFatal("no memory");
    }
    ~FreshMemory() { std::free(m_memory); }
    FreshMemory(const FreshMemory &) = delete;
    FreshMemory &operator=(const FreshMemory &) = delete;

    /// Bytes from the first page that lies wholly inside.
    uint32_t *at(size_t offset) const
    {
        return static_cast<uint32_t *>(static_cast<void *>(firstPage() + offset));
    }
    PixelRange range(size_t offset, size_t bytes) const { return {at(offset), at(offset + bytes)}; }

    /// The pages that the process has, counted from the first, as far as the memory goes.
    std::vector<size_t> residentPages() const
    {
        const size_t pages = (m_bytes - m_pageBytes) / m_pageBytes;
        std::vector<unsigned char> resident(pages);
        if (mincore(firstPage(), pages * m_pageBytes, resident.data()) != 0)
            qFatal("mincore");
        std::vector<size_t> result;
        for (size_t i = 0; i < pages; ++i)
            if (resident[i] & 1U)
                result.push_back(i);
        return result;
    }
    /// Whether all of it is still zero.
    bool isZero() const
    {
        const char *bytes = static_cast<const char *>(m_memory);
        return std::all_of(bytes, bytes + m_bytes, [](char byte) { return byte == 0; });
    }
    /// The part of this memory for which large pages were asked, in bytes.
    size_t advisedBytes() const
    {
        size_t advised = 0;
        size_t part = 0;
        const QByteArray maps = contentsOf("/proc/self/smaps");
        for (const QByteArray &line : maps.split('\n')) {
            const auto match = QRegularExpression("^([0-9a-f]+)-([0-9a-f]+) ").match(line);
            if (match.hasMatch()) {
                const quintptr begin =
                    std::max(quintptr(match.captured(1).toULongLong(nullptr, 16)), first());
                const quintptr end =
                    std::min(quintptr(match.captured(2).toULongLong(nullptr, 16)), first() + m_bytes);
                part = begin < end ? end - begin : 0;
            } else if (line.startsWith("VmFlags:") && line.contains(" hg")) {
                advised += part;
            }
        }
        return advised;
    }

private:
    quintptr first() const { return reinterpret_cast<quintptr>(m_memory); }
    char *firstPage() const
    {
        const size_t begun = first() % m_pageBytes;
        return static_cast<char *>(m_memory) + (begun == 0 ? 0 : m_pageBytes - begun);
    }

    size_t m_bytes;
    void *m_memory;
    size_t m_pageBytes;
};

} // namespace

class tst_CanvasPages : public QObject
{
    Q_OBJECT

private slots:
    void bandGetsItsPagesAndNoOthers();
    void neighbouringRangesShareAPage();
    void largePagesLieInsideWhatIsPainted();
    void smallCanvasIsLeftAlone();
    void nothingIsPainted();
};

void tst_CanvasPages::bandGetsItsPagesAndNoOthers()
{
    const FreshMemory memory(largeBytes);
    const auto page = size_t(sysconf(_SC_PAGESIZE));
    const std::vector<size_t> before = memory.residentPages();
    CanvasPages(32 * megabyte) // the smallest that gets any
        .bandBegins({memory.range(4 * page + 8, 8), memory.range(10 * page, 3 * page),
                     memory.range(21 * page - 4, 8)});
    std::vector<size_t> expected = {4, 10, 11, 12, 20, 21};
    expected.insert(expected.begin(), before.begin(), before.end());
    std::sort(expected.begin(), expected.end());
    QCOMPARE(memory.residentPages(), expected);
    QVERIFY(memory.isZero());
}

void tst_CanvasPages::neighbouringRangesShareAPage()
{
    const FreshMemory memory(largeBytes);
    const auto page = size_t(sysconf(_SC_PAGESIZE));
    CanvasPages(largeBytes)
        .bandBegins({memory.range(page, 100), memory.range(page + 200, page), memory.range(3 * page, 4),
                     memory.range(4 * page - 4, 8)});
    const std::vector<size_t> resident = memory.residentPages();
    for (const size_t expected : {1, 2, 3, 4})
        QVERIFY(std::find(resident.begin(), resident.end(), expected) != resident.end());
    QVERIFY(std::find(resident.begin(), resident.end(), size_t(5)) == resident.end());
}

void tst_CanvasPages::largePagesLieInsideWhatIsPainted()
{
    const bool known = QFileInfo::exists("/sys/kernel/mm/transparent_hugepage/enabled");
    const FreshMemory memory(largeBytes);
    CanvasPages(largeBytes)
        .mapBegins({memory.range(megabyte / 2, megabyte), // too little
                    memory.range(10 * megabyte, 9 * megabyte)});
    const size_t advised = memory.advisedBytes();
    QVERIFY2(!known || (advised >= 6 * megabyte && advised <= 8 * megabyte),
             qPrintable(QString::number(advised)));
    QCOMPARE(advised % (2 * megabyte), size_t(0));
    QVERIFY(memory.isZero());
}

void tst_CanvasPages::smallCanvasIsLeftAlone()
{
    const FreshMemory memory(largeBytes);
    const std::vector<size_t> before = memory.residentPages();
    const CanvasPages pages(32 * megabyte - 1);
    pages.mapBegins({memory.range(0, 60 * megabyte)});
    pages.bandBegins({memory.range(0, 60 * megabyte)});
    QCOMPARE(memory.residentPages(), before);
    QCOMPARE(memory.advisedBytes(), size_t(0));
}

void tst_CanvasPages::nothingIsPainted()
{
    const FreshMemory memory(largeBytes);
    const std::vector<size_t> before = memory.residentPages();
    const CanvasPages pages(largeBytes);
    pages.mapBegins({});
    pages.bandBegins({});
    pages.bandBegins({{memory.at(100), memory.at(100)}});
    QVERIFY(memory.residentPages().size() <= before.size() + 1);
}

QTEST_GUILESS_MAIN(tst_CanvasPages)
#include "tst_canvaspages.moc"
