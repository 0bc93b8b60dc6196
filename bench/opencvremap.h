#pragma once

#ifdef BENCH_OPENCV

#include "floor.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <vector>

/// cv::remap on one thread, nearest neighbour, with a float map that stands ready.
class OpenCvRemap
{
public:
    /// @param indexes  photograph pixel number of every map pixel; -1 is mapped outside the photograph
    OpenCvRemap(const QImage &photograph, const std::vector<qint32> &indexes, QSize size)
        : m_photograph(photograph), m_size(size), m_map(size.height(), size.width(), CV_32FC2)
    {
        cv::setNumThreads(1);
        const int width = photograph.width();
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x) {
                const qint32 index = indexes[size_t(y) * size_t(size.width()) + size_t(x)];
                const int sourceX = index < 0 ? -1 : index % width;
                const int sourceY = index < 0 ? -1 : index / width;
                m_map.at<cv::Vec2f>(y, x) = {float(sourceX), float(sourceY)};
            }
    }

    /// The usual call: a fresh picture, transparent where the map points outside.
    QImage paint() const
    {
        auto *target = new cv::Mat;
        cv::remap(source(), *target, m_map, cv::noArray(), cv::INTER_NEAREST);
        const auto release = [](void *mat) { delete static_cast<cv::Mat *>(mat); };
        return {
            target->data, target->cols, target->rows, int(target->step), QImage::Format_ARGB32_Premultiplied,
            release,      target};
    }

    /// The best that can be done for it: a zeroed canvas, of which it leaves alone what the map does not
    /// reach.
    QImage paintInside() const
    {
        QImage map = zeroedCanvas(m_size);
        cv::Mat target(m_size.height(), m_size.width(), CV_8UC4, map.bits(), size_t(map.bytesPerLine()));
        cv::remap(source(), target, m_map, cv::noArray(), cv::INTER_NEAREST, cv::BORDER_TRANSPARENT);
        return map;
    }

private:
    cv::Mat source() const
    {
        return {m_photograph.height(), m_photograph.width(), CV_8UC4,
                const_cast<uchar *>(m_photograph.constBits()), size_t(m_photograph.bytesPerLine())};
    }

    QImage m_photograph;
    QSize m_size;
    cv::Mat m_map;
};

#endif
