#include "svgpixmapcache.h"

#include "trlog.h"

#include <QPainter>

#include <cmath>

namespace Harmattan {

SvgPixmapCache::SvgPixmapCache()
    : m_renderCount(0)
{
}

SvgPixmapCache::SvgPixmapCache(const QString& fileName)
    : m_renderCount(0)
{
    load(fileName);
}

bool SvgPixmapCache::load(const QString& fileName)
{
    m_pixmap = QImage();
    if (fileName.isEmpty())
        return false;
    if (!m_renderer.load(fileName)) {
        OBD_ERROR << "Cannot load SVG " << fileName.toStdString();
        return false;
    }
    return true;
}

bool SvgPixmapCache::isValid() const
{
    return m_renderer.isValid();
}

void SvgPixmapCache::render(const QSizeF& size)
{
    const int width = static_cast<int>(std::round(size.width()));
    const int height = static_cast<int>(std::round(size.height()));
    if (width <= 0 || height <= 0 || !m_renderer.isValid()) {
        m_pixmap = QImage();
        return;
    }
    if (!m_pixmap.isNull() && m_pixmap.width() == width && m_pixmap.height() == height)
        return;
    m_pixmap = QImage(width, height, QImage::Format_ARGB32_Premultiplied);
    m_pixmap.fill(Qt::transparent);
    QPainter painter(&m_pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    m_renderer.render(&painter, QRectF(0, 0, width, height));
    ++m_renderCount;
}

const QImage& SvgPixmapCache::pixmap() const
{
    return m_pixmap;
}

QSvgRenderer* SvgPixmapCache::renderer()
{
    return &m_renderer;
}

int SvgPixmapCache::renderCount() const
{
    return m_renderCount;
}

} // namespace Harmattan
