#ifndef HARMATTAN_SVGPIXMAPCACHE_H
#define HARMATTAN_SVGPIXMAPCACHE_H

#include <QImage>
#include <QSizeF>
#include <QString>
#include <QSvgRenderer>

namespace Harmattan {

// One SVG picture rasterised at one size: drawing uses the raster, so the
// SVG is rendered again only when the size changes.
class SvgPixmapCache
{
public:
    SvgPixmapCache();
    explicit SvgPixmapCache(const QString& fileName);

    bool load(const QString& fileName);
    bool isValid() const;
    // Width and height rounded half away from zero; transparent outside the
    // picture. Does nothing when the rounded size is the current one.
    void render(const QSizeF& size);
    const QImage& pixmap() const;
    QSvgRenderer* renderer();
    int renderCount() const;

private:
    QSvgRenderer m_renderer;
    // An image rather than a QPixmap: painted items may render off the
    // user-interface thread.
    QImage m_pixmap;
    int m_renderCount;
};

} // namespace Harmattan

#endif
