#pragma once

#include "platform/system/Bytes.h"
#include "preview/HexText.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <cstdint>

namespace thntfs {

/// Engine's PreviewBuffer as a dump: offsets, bytes and characters. One byte at least is selected, by mouse
/// or keys. Only what shows is formatted, whenever it is painted.
class CHexView : public QAbstractScrollArea {
    Q_DECLARE_TR_FUNCTIONS(CHexView)

public:
    explicit CHexView(QWidget* parent = nullptr);

    /// Widths of the columns in front of the lines that divide them, in pixels.
    void SetColumns(int offsets, int binary);

    /// To be called when PreviewBuffer has been emptied.
    void Clear();

    void Select(const HexMatch& bytes);
    [[nodiscard]] HexMatch Selected() const;
    void SelectAll();

    /// Puts the selected bytes into the clipboard, as pairs of digits or as text.
    void CopyHex() const;
    void CopyText() const;

    /// The bytes shown.
    [[nodiscard]] static ConstBytes Shown();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void UpdateScrolling();
    void PaintLine(QPainter& painter, std::uint32_t line) const;
    void PaintSelection(QPainter& painter, std::uint32_t line) const;
    void PaintRules(QPainter& painter, const QRect& clip) const;
    [[nodiscard]] QRect CharsRect(std::uint32_t line, int first, int count) const;
    [[nodiscard]] std::uint64_t ByteAt(const QPoint& at) const;
    void MoveTo(std::int64_t offset, bool extend);
    void ShowCaret();
    [[nodiscard]] ConstBytes SelectedBytes() const;

    std::uint32_t lineCount_;
    int lineHeight_;
    int charWidth_;
    int offsetsWidth_ = 0;
    int binaryWidth_ = 0;
    std::uint64_t anchor_ = 0; ///< where the selection began
    std::uint64_t caret_ = 0;  ///< where it ends
};

} // namespace thntfs
