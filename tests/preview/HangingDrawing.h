#pragma once

#include <QByteArray>

namespace thntfs::test {

/// A drawing of some kilobytes that takes years to measure: each group holds the one before it twice.
inline QByteArray HangingDrawing() {
    QByteArray drawing =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"><g "
        "id=\"a0\"><rect width=\"9\" height=\"9\"/></g>";
    for (int i = 1; i <= 40; ++i) {
        const QByteArray use = "<use xlink:href=\"#a" + QByteArray::number(i - 1) + "\"/>";
        drawing += "<g id=\"a" + QByteArray::number(i) + "\">" + use + use + "</g>";
    }
    return drawing + "</svg>";
}

} // namespace thntfs::test
