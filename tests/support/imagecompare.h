#pragma once

#include <QImage>
#include <QString>
#include <QtTest>

/// Compares two pictures exactly: size and every pixel with its alpha. Two null images are equal; a format
/// may differ where every pixel has the same colour. On a difference both pictures are saved as PNG files,
/// into the folder that the environment variable OVMIC_TEST_OUTPUT names, or into the system's folder for
/// temporary files.
/// @return empty when they are equal, else sizes, first differing pixel, number of differing pixels and files
QString imageDifference(const QImage &actual, const QImage &expected);

/// Whether nothing is painted on a map: every pixel is transparent black.
bool isBlank(const QImage &map);

/// Fails the running test function with what imageDifference() says.
#define COMPARE_IMAGES(actual, expected)                                                                     \
    do {                                                                                                     \
        const QString imagesDiffer = imageDifference((actual), (expected));                                  \
        if (!imagesDiffer.isEmpty())                                                                         \
            QFAIL(qPrintable(imagesDiffer));                                                                 \
    } while (false)
