#include "preview/HexView.h"

#include "engine/EngineState.h"
#include "shell/WaitCursor.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QtMath>
#include <algorithm>

namespace thntfs {

namespace {

constexpr int kFontPoints = 10;
constexpr int kMargin = 2;      // of all text, to the left and above
constexpr int kOffsetChars = 8; // in front of a line's text
constexpr int kLineChars = 81;  // that scrolling makes room for
constexpr int kPage = 10;       // characters and lines
constexpr QRgb kOffsetColour = qRgb(192, 192, 192);
constexpr QRgb kSelectedGround = qRgb(173, 214, 255);

// Text is black, so the paper is white whatever the palette says.
constexpr Qt::GlobalColor kPaper = Qt::white;
constexpr Qt::GlobalColor kInk = Qt::black;

// Characters stand in cells of whole pixels, as wide as the columns of a font in full size expect.
int CharCell(const QFont& font) {
    return std::max(1, qCeil(QFontMetricsF(font).horizontalAdvance(QLatin1Char('0'))));
}

QFont DumpFont() {
    QFont font;
    font.setFamilies({QStringLiteral("Courier New"), QStringLiteral("Liberation Mono"),
                      QStringLiteral("DejaVu Sans Mono"), QStringLiteral("monospace")});
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPointSize(kFontPoints);
    const qreal advance = QFontMetricsF(font).horizontalAdvance(QLatin1Char('0'));
    font.setLetterSpacing(QFont::AbsoluteSpacing, CharCell(font) - advance);
    return font;
}

std::uint32_t LinesOf(std::uint64_t bytes) {
    return static_cast<std::uint32_t>((bytes + kHexLineBytes - 1) / kHexLineBytes);
}

} // namespace

CHexView::CHexView(QWidget* parent)
    : QAbstractScrollArea(parent)
    , lineCount_(LinesOf(Engine.PreviewLength)) {
    setObjectName(QStringLiteral("HexView"));
    setAccessibleName(tr("Content in hexadecimal"));
    setFont(DumpFont());
    lineHeight_ = std::max(1, fontMetrics().height() + std::max(0, fontMetrics().leading()));
    charWidth_ = CharCell(font());
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    viewport()->setCursor(lineCount_ == 0 ? Qt::ArrowCursor : Qt::IBeamCursor);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
}

ConstBytes CHexView::Shown() {
    return ConstBytes(Engine.PreviewBuffer).first(static_cast<std::size_t>(Engine.PreviewLength));
}

void CHexView::SetColumns(int offsets, int binary) {
    offsetsWidth_ = offsets;
    binaryWidth_ = binary;
    viewport()->update();
}

void CHexView::Clear() {
    lineCount_ = 0;
    UpdateScrolling();
    viewport()->update();
}

void CHexView::UpdateScrolling() {
    const auto lines = static_cast<int>(lineCount_);
    verticalScrollBar()->setRange(0, std::max(0, lines * lineHeight_ + kMargin - viewport()->height()));
    verticalScrollBar()->setSingleStep(lineHeight_);
    verticalScrollBar()->setPageStep(kPage * lineHeight_);
    const int width = lines == 0 ? 0 : kLineChars * charWidth_;
    horizontalScrollBar()->setRange(0, std::max(0, width - viewport()->width()));
    horizontalScrollBar()->setSingleStep(charWidth_);
    horizontalScrollBar()->setPageStep(kPage * charWidth_);
}

void CHexView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrolling();
}

void CHexView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), kPaper);
    if (lineCount_ == 0) {
        painter.setPen(kInk);
        painter.drawText(viewport()->rect(), int{Qt::AlignCenter} | int{Qt::TextSingleLine},
                         tr("Preview failed."));
        return;
    }
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const QRect clip = event->rect().translated(scrolled);
    painter.translate(-scrolled);
    const auto first = static_cast<std::uint32_t>(std::max(0, clip.top()) / lineHeight_);
    const auto behind = static_cast<std::uint32_t>((clip.bottom() + lineHeight_ - 1) / lineHeight_);
    for (std::uint32_t line = first; line <= std::min(lineCount_ - 1, behind); ++line) {
        PaintLine(painter, line);
    }
    PaintRules(painter, clip);
}

void CHexView::PaintLine(QPainter& painter, std::uint32_t line) const {
    const std::uint64_t start = line * std::uint64_t{kHexLineBytes};
    const ConstBytes shown = Shown();
    const ConstBytes bytes =
        shown.subspan(static_cast<std::size_t>(start),
                      static_cast<std::size_t>(std::min<std::uint64_t>(kHexLineBytes, shown.size() - start)));
    const int baseline = static_cast<int>(line) * lineHeight_ + kMargin + fontMetrics().ascent();
    PaintSelection(painter, line);
    painter.setPen(QColor(kOffsetColour));
    painter.drawText(kMargin, baseline, HexOffsetText(line));
    painter.setPen(kInk);
    painter.drawText(kOffsetChars * charWidth_ + kMargin, baseline, HexLineText(bytes));
}

// Behind both the digits and the characters of a byte.
void CHexView::PaintSelection(QPainter& painter, std::uint32_t line) const {
    const std::uint64_t start = line * std::uint64_t{kHexLineBytes};
    const HexMatch selected = Selected();
    const std::uint64_t from = std::max(start, selected.Offset);
    const std::uint64_t to = std::min(start + kHexLineBytes, selected.Offset + selected.Length);
    if (from >= to) {
        return;
    }
    const auto first = static_cast<int>(from - start);
    const auto last = static_cast<int>(to - start) - 1;
    const int chars = HexPairAt(last) + 2 - HexPairAt(first);
    painter.fillRect(CharsRect(line, HexPairAt(first), chars), QColor(kSelectedGround));
    painter.fillRect(CharsRect(line, kHexPartChars + first, last - first + 1), QColor(kSelectedGround));
}

void CHexView::PaintRules(QPainter& painter, const QRect& clip) const {
    painter.setPen(kInk);
    for (const int x : {offsetsWidth_, offsetsWidth_ + binaryWidth_}) {
        painter.drawLine(x, clip.top(), x, clip.bottom());
    }
}

QRect CHexView::CharsRect(std::uint32_t line, int first, int count) const {
    return {(kOffsetChars + first) * charWidth_ + kMargin, static_cast<int>(line) * lineHeight_ + kMargin,
            count * charWidth_, lineHeight_};
}

// The nearest one; in the last line it may lie behind the end.
std::uint64_t CHexView::ByteAt(const QPoint& at) const {
    const int x = at.x() + horizontalScrollBar()->value() - kOffsetChars * charWidth_ - kMargin;
    const int character = x / charWidth_;
    const int line = std::clamp((at.y() + verticalScrollBar()->value() - kMargin) / lineHeight_, 0,
                                static_cast<int>(lineCount_) - 1);
    constexpr int kLast = static_cast<int>(kHexLineBytes) - 1;
    int byte = kLast;
    if (character >= kHexPartChars) {
        byte = std::min(character - kHexPartChars, kLast);
    } else {
        while (byte > 0 && HexPairAt(byte) > character) {
            --byte;
        }
    }
    return static_cast<std::uint64_t>(line) * kHexLineBytes + static_cast<unsigned>(byte);
}

void CHexView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && lineCount_ != 0) {
        MoveTo(static_cast<std::int64_t>(ByteAt(event->position().toPoint())),
               event->modifiers().testFlag(Qt::ShiftModifier));
    }
}

void CHexView::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton) && lineCount_ != 0) {
        MoveTo(static_cast<std::int64_t>(ByteAt(event->position().toPoint())), true);
    }
}

void CHexView::keyPressEvent(QKeyEvent* event) {
    constexpr std::int64_t kLine = kHexLineBytes;
    const auto caret = static_cast<std::int64_t>(caret_);
    const bool whole = event->modifiers().testFlag(Qt::ControlModifier);
    std::int64_t to = 0;
    switch (event->key()) {
    case Qt::Key_Left:
        to = caret - 1;
        break;
    case Qt::Key_Right:
        to = caret + 1;
        break;
    case Qt::Key_Up:
        to = caret < kLine ? caret : caret - kLine;
        break;
    case Qt::Key_Down:
        to = caret + kLine;
        break;
    case Qt::Key_PageUp:
        to = std::max(caret - kPage * kLine, caret % kLine);
        break;
    case Qt::Key_PageDown:
        to = caret + kPage * kLine;
        break;
    case Qt::Key_Home:
        to = whole ? 0 : caret - caret % kLine;
        break;
    case Qt::Key_End:
        to = whole ? static_cast<std::int64_t>(Engine.PreviewLength) : caret - caret % kLine + kLine - 1;
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    MoveTo(to, event->modifiers().testFlag(Qt::ShiftModifier));
}

void CHexView::MoveTo(std::int64_t offset, bool extend) {
    if (lineCount_ == 0) {
        return;
    }
    const auto last = static_cast<std::int64_t>(Engine.PreviewLength) - 1;
    caret_ = static_cast<std::uint64_t>(std::clamp<std::int64_t>(offset, 0, last));
    anchor_ = extend ? anchor_ : caret_;
    ShowCaret();
}

void CHexView::ShowCaret() {
    const int top = static_cast<int>(caret_ / kHexLineBytes) * lineHeight_;
    const int bottom = top + lineHeight_ + kMargin;
    QScrollBar* bar = verticalScrollBar();
    if (top < bar->value()) {
        bar->setValue(top);
    } else if (bottom > bar->value() + viewport()->height()) {
        bar->setValue(bottom - viewport()->height());
    }
    const QRect pair = CharsRect(0, HexPairAt(static_cast<int>(caret_ % kHexLineBytes)), 2);
    QScrollBar* across = horizontalScrollBar();
    if (pair.left() < across->value()) {
        across->setValue(pair.left());
    } else if (pair.right() > across->value() + viewport()->width()) {
        across->setValue(pair.right() - viewport()->width());
    }
    viewport()->update();
}

void CHexView::Select(const HexMatch& bytes) {
    anchor_ = bytes.Offset;
    caret_ = bytes.Offset + bytes.Length - 1;
    ShowCaret();
}

void CHexView::SelectAll() {
    if (lineCount_ != 0) {
        anchor_ = 0;
        caret_ = Engine.PreviewLength - 1;
        viewport()->update();
    }
}

HexMatch CHexView::Selected() const {
    const std::uint64_t first = std::min(anchor_, caret_);
    return {first, lineCount_ == 0 ? 0 : std::max(anchor_, caret_) - first + 1};
}

ConstBytes CHexView::SelectedBytes() const {
    const HexMatch selected = Selected();
    return Shown().subspan(static_cast<std::size_t>(selected.Offset),
                           static_cast<std::size_t>(selected.Length));
}

void CHexView::CopyHex() const {
    const WaitCursor hourglass;
    QGuiApplication::clipboard()->setText(HexCopyText(SelectedBytes()));
}

void CHexView::CopyText() const {
    const WaitCursor hourglass;
    QGuiApplication::clipboard()->setText(PlainCopyText(SelectedBytes()));
}

} // namespace thntfs
