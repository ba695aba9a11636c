#pragma once

#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QTimer>
#include <deque>
#include <functional>
#include <vector>

class QFileDialog;

namespace thntfs::test {

/// A box that came up.
struct SeenBox {
    QString Text;
    QString Caption;
    QMessageBox::Icon Icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons Buttons;
};

/// Stands in for the user wherever the program waits for one: answers message boxes and file dialogs as they
/// come up, and remembers the boxes.
class BoxAnswers : public QObject {
public:
    BoxAnswers();

    /// The answer to the next box for which none is queued yet. Boxes without one get OK, No or Cancel.
    void Answer(QMessageBox::StandardButton button) { answers_.push_back(button); }

    /// What the next file dialog gets: a path typed into it, or nothing for Cancel.
    void AnswerFile(const QString& path) { files_.push_back(path); }

    std::vector<SeenBox> Boxes;
    std::vector<QString> SuggestedFiles; ///< what stood in the file dialogs
    std::vector<QStringList> FileFilters;

    /// Boxes that begin so are closed at once and not remembered.
    QString Passed;

    /// Done as long as a box stands, before it is answered: a box is answered only when this says so. Empty
    /// for at once.
    std::function<bool(const QMessageBox& box)> MayAnswer;

private:
    void Look();
    void AnswerBox(QMessageBox& box);
    void AnswerFileDialog(QFileDialog& dialog);

    QTimer timer_;
    QMessageBox* recorded_ = nullptr;
    QObject* answered_ = nullptr;
    std::deque<QMessageBox::StandardButton> answers_;
    std::deque<QString> files_;
};

/// Runs the event loop until a condition holds; false when it didn't within some seconds.
bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 20000);

/// Lets everything that is queued happen.
void RunEvents();

} // namespace thntfs::test
