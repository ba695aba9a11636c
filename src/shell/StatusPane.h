#pragma once

#include <QLabel>

namespace thntfs {

/// A sunken pane of the status bar. It would like to be as wide as a number of blanks. In a window too narrow
/// for that it gives way, down to what its text needs, and where the text is long down to a smaller number of
/// blanks: the text then ends in dots, and the tool tip holds the whole.
class CStatusPane : public QLabel {
public:
    CStatusPane(int wantedBlanks, int leastBlanks, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int WidthOf(int blanks) const;
    [[nodiscard]] int Edges() const;

    int wantedBlanks_;
    int leastBlanks_;
};

} // namespace thntfs
