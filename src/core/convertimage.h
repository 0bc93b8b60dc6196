#pragma once

#include "conversionlistener.h"
#include "nearsidedview.h"

class QImage;

/// The projection engine: paints a photographed globe into an equirectangular map and re-centres that map.
/// A plain value; construct one per conversion, set its parameters, then call the operations in the order
/// convertImage, rotateImage, moveImage. No parameter is checked or clamped; every value has a defined
/// result. Axes, formulas and the reason for each rounding: docs/projection.md.
class ConvertImage
{
public:
    ConvertImage() = default;
    /// All parameters at once; the size of the photograph is taken from the photograph.
    /// @param listener  hears of convertImage()
    explicit ConvertImage(const projection::PerspectiveParameters &parameters,
                          ConversionListener listener = windowListener());

    /// Centre of the disc in the photograph, in pixels; y grows downwards. Any int; 0, 0 at construction.
    void setCenter(int x, int y);
    /// Radius of the disc in photograph pixels. Any int; 0 at construction.
    void setRadius(int r);
    /// Viewpoint to globe centre in globe radii: 1 is the surface, 100 practically a parallel projection.
    /// 1 or less (negative ones too) and NaN show nothing of the globe: no pixel is painted. 100 at
    /// construction.
    void setDistance(double d);
    /// Map columns for 360 degrees per photograph column, and map rows for 90 degrees per photograph row.
    /// 2, 2 at construction.
    void setOutputRatio(double rx, double ry);
    /// Whether radii near the edge of the disc are corrected; they are at construction.
    void setLens(projection::Lens lens);

    /// Paints the visible cap into the upper half of a map: the disc centre becomes the top row, longitude
    /// -180 the rightmost column. The listener hears of every row; that of a window, which it has unless another
    /// one is given, handles pending events then.
    /// @param src  the photograph, 32 bits; samples outside it leave their map pixel as it is
    /// @param dst  the canvas, 32 bits with alpha; neither resized nor filled
    void convertImage(QImage &src, QImage &dst);

    /// Rotates the whole sphere and resamples every pixel of the map.
    /// @param axis   2 about the polar axis, 3 about the axis through longitude 0 on the equator,
    ///               anything else about the axis through longitude 90
    /// @param angle  whole degrees, any int
    /// @param src    the map; height 0 does nothing
    /// @param dst    at least as large; overwritten in the size of src, but for pixels whose direction in src
    ///               has no longitude or lies outside src
    void rotateImage(int axis, int angle, QImage &src, QImage &dst);

    /// Rotates the sphere about its polar axis: a cyclic shift of the columns.
    /// @param angle  degrees, positive to the right. 360 is taken off (or put on) once when it is larger than
    ///               360 (smaller than -360). A shift of less than one pixel draws nothing at all.
    ///               NaN and infinities draw nothing.
    /// @param src    the map, up to 32767 pixels a side: the painter leaves out what lies beyond
    /// @param dst    a transparent canvas of the same size; a null one stays as it is
    void moveImage(double angle, QImage &src, QImage &dst);

private:
    projection::PerspectiveParameters m_parameters;
    ConversionListener m_listener = windowListener();
};
