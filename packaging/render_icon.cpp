// render_icon PICTURE.svg EDGE OUT.png: draws the picture, EDGE pixels wide and high, as the
// program does.

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    QSvgRenderer renderer(QString::fromLocal8Bit(argv[1]));
    const int edge = QByteArray(argv[2]).toInt();
    if (!renderer.isValid() || edge <= 0) return 2;
    QImage picture(edge, edge, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    renderer.render(&painter);
    painter.end();
    return picture.save(QString::fromLocal8Bit(argv[3])) ? 0 : 1;
}
