#include "gather.h"

#include <QVector>
#include <QtTest>

#include <algorithm>

using namespace projection;

namespace
{

/// Marks what has gone through the finish.
uint32_t finished(uint32_t pixel)
{
    return pixel + 1000;
}

constexpr uint32_t untouched = 7;

} // namespace

class tst_Gather : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void gathersOneBatchBehind();
    void negativeStepGoesToTheLeft();
    void noneKeepsThePixel();
    void fullBatchIsGathered();
    void nothingIsGatheredTwice();
    void prefetchingAnyAddressDoesNotCrash();

private:
    using Queue = GatherQueue<uint32_t (*)(uint32_t)>;

    /// Puts a batch into the queue that copies the photograph's pixels of these numbers to `out` and beyond.
    void submit(Queue &queue, const QVector<int> &indexes, uint32_t *out, int step = 1)
    {
        GatherBatch &batch = queue.next();
        QCOMPARE(batch.count, 0);
        batch.count = indexes.size();
        batch.out = out;
        batch.step = step;
        std::copy(indexes.begin(), indexes.end(), batch.indexes);
        queue.submit();
    }

    QVector<uint32_t> m_pixels;
    QVector<uint32_t> m_map;
};

void tst_Gather::init()
{
    m_pixels.clear();
    for (uint32_t i = 0; i < 2000; ++i)
        m_pixels.append(10 * i);
    m_map = QVector<uint32_t>(6, untouched);
}

void tst_Gather::gathersOneBatchBehind()
{
    Queue queue(m_pixels.constData(), finished);
    submit(queue, {5, 3}, m_map.data());
    QCOMPARE(m_map, (QVector<uint32_t>{7, 7, 7, 7, 7, 7}));
    submit(queue, {4}, m_map.data() + 2);
    QCOMPARE(m_map, (QVector<uint32_t>{1050, 1030, 7, 7, 7, 7}));
    submit(queue, {0, 1999}, m_map.data() + 4);
    QCOMPARE(m_map, (QVector<uint32_t>{1050, 1030, 1040, 7, 7, 7}));
    queue.flush();
    QCOMPARE(m_map, (QVector<uint32_t>{1050, 1030, 1040, 7, 1000, 20990}));
}

void tst_Gather::negativeStepGoesToTheLeft()
{
    Queue queue(m_pixels.constData(), finished);
    submit(queue, {1, 2, 3}, m_map.data() + 4, -1);
    submit(queue, {4, 5}, m_map.data());
    queue.flush();
    QCOMPARE(m_map, (QVector<uint32_t>{1040, 1050, 1030, 1020, 1010, 7}));
}

void tst_Gather::noneKeepsThePixel()
{
    Queue queue(m_pixels.constData(), finished);
    submit(queue, {1, GatherBatch::none, 2, GatherBatch::none}, m_map.data());
    queue.flush();
    QCOMPARE(m_map, (QVector<uint32_t>{1010, 7, 1020, 7, 7, 7}));
}

void tst_Gather::fullBatchIsGathered()
{
    QVector<uint32_t> map(GatherBatch::capacity + 1, untouched);
    QVector<uint32_t> expected;
    QVector<int> indexes;
    for (int i = 0; i < GatherBatch::capacity; ++i) {
        indexes.append(1999 - 3 * i);
        expected.append(finished(m_pixels.at(indexes.last())));
    }
    expected.append(untouched);
    Queue queue(m_pixels.constData(), finished);
    submit(queue, indexes, map.data());
    queue.flush();
    QCOMPARE(map, expected);
}

void tst_Gather::nothingIsGatheredTwice()
{
    Queue queue(m_pixels.constData(), finished);
    submit(queue, {1, 2}, m_map.data());
    submit(queue, {3}, m_map.data() + 2);
    queue.flush();
    m_map.fill(untouched);
    queue.flush();
    submit(queue, {}, m_map.data());
    queue.flush();
    QCOMPARE(m_map, QVector<uint32_t>(6, untouched));
}

void tst_Gather::prefetchingAnyAddressDoesNotCrash()
{
    Queue queue(m_pixels.constData(), finished);
    prefetch(nullptr);
    submit(queue, {GatherBatch::none, GatherBatch::none}, m_map.data());
    queue.flush();
    QCOMPARE(m_map, QVector<uint32_t>(6, untouched));
}

QTEST_GUILESS_MAIN(tst_Gather)
#include "tst_gather.moc"
