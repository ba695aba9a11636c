#pragma once

#include <QByteArray>

namespace thntfs::test {

/// A drawing of some kilobytes that takes years to measure: each group holds the one before it twice.
inline QByteArray HangingDrawing() {
    QByteArray drawing =
        R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink"><path id="a0" d="M0 0L9 9"/>)";
    for (int i = 0; i < 40; ++i) {
        const QByteArray use = R"(<use xlink:href="#a)" + QByteArray::number(i) + R"("/>)";
        drawing += R"(<g id="a)" + QByteArray::number(i + 1) + R"(">)" + use + use + "</g>";
    }
    return drawing + "</svg>";
}

} // namespace thntfs::test
