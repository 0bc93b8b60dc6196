#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <vector>

/// What a photograph shows.
enum class PictureKind {
    Whole,     ///< a whole disc, dark sky, sun behind the viewer
    Marked,    ///< the same with a caption or a border
    BrightSky, ///< before a grey or a sloping sky
    Cut,       ///< 60 to 95 % of the edge inside the frame
    Phase,     ///< 35 to 95 degrees
    NoDisc,    ///< stars, clouds, slopes, checkers, land, noise
    Odd        ///< halo, rings, dust, uneven lens, bright rim: nothing that anybody promises
};

constexpr PictureKind everyPictureKind[] = {PictureKind::Whole, PictureKind::Marked, PictureKind::BrightSky,
                                            PictureKind::Cut,   PictureKind::Phase,  PictureKind::NoDisc,
                                            PictureKind::Odd};

QString nameOf(PictureKind kind);

/// A photograph whose circle is known.
struct DiscPicture {
    QImage image; ///< Format_RGB32
    bool hasDisc = false;
    double centerX = 0.0; ///< photograph pixels; the first pixel covers 0 to 1
    double centerY = 0.0;
    double radius = 0.0;
    QString recipe; ///< what was drawn, for people
};

/// Draws a photograph; the same one for the same kind, seed and size limit.
/// @param longestSide  of the photograph, 300 or more; most are smaller
DiscPicture discPicture(PictureKind kind, quint32 seed, int longestSide);

/// A series of photographs of one globe seen from afar, 1280 x 960: the disc wanders by 5 % of the radius and
/// breathes by 2 %, the phase is 40 degrees, and its ground stays the same, with beacons on it.
class DiscSeries
{
public:
    explicit DiscSeries(quint32 seed);

    static constexpr int frameCount = 60;

    /// @param number  0 .. frameCount - 1
    DiscPicture frame(int number) const;

private:
    quint32 m_seed;
};
