#pragma once

#include "discfinder.h"

#include <QImage>

#ifdef BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include <algorithm>
#include <vector>

/// The best circle of cv::HoughCircles on a photograph, reduced to 600 pixels a side; nothing without OpenCV.
/// It knows no confidence: that is 1.
/// @param alternative  HOUGH_GRADIENT_ALT (with its own measure of a circle's quality) instead of HOUGH_GRADIENT
inline std::optional<FoundDisc> houghDisc(const QImage &photograph, bool alternative)
{
#ifdef BENCH_OPENCV
    const double scale = std::max(1.0, std::max(photograph.width(), photograph.height()) / 600.0);
    const QSize size(int(photograph.width() / scale), int(photograph.height() / scale));
    const QImage grey = photograph.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                            .convertToFormat(QImage::Format_Grayscale8);
    const cv::Mat wrapped(grey.height(), grey.width(), CV_8UC1, const_cast<uchar *>(grey.constBits()),
                          size_t(grey.bytesPerLine()));
    cv::Mat calm;
    cv::medianBlur(wrapped, calm, 5);
    cv::GaussianBlur(calm, calm, cv::Size(5, 5), 1.2);
    const int shorter = std::min(size.width(), size.height());
    std::vector<cv::Vec3f> circles;
    if (alternative)
        cv::HoughCircles(calm, circles, cv::HOUGH_GRADIENT_ALT, 1.5, shorter * 0.25, 100, 0.6, shorter / 20,
                         shorter * 3 / 4);
    else
        cv::HoughCircles(calm, circles, cv::HOUGH_GRADIENT, 2, shorter * 0.25, 60, shorter * 0.25,
                         shorter / 20, shorter * 3 / 4);
    if (circles.empty())
        return std::nullopt;
    const cv::Vec3f &best = circles.front(); // sorted by votes
    return FoundDisc{(double(best[0]) + 0.5) * scale, (double(best[1]) + 0.5) * scale,
                     double(best[2]) * scale, 1.0};
#else
    Q_UNUSED(photograph)
    Q_UNUSED(alternative)
    return std::nullopt;
#endif
}
