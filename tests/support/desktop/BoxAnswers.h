#pragma once

#include <QElapsedTimer>
#include <QMessageBox>
#include <QPointer>
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
    QString More; ///< below the text
};

/// Stands in for the user wherever the program waits for one: answers message boxes and file dialogs as they
/// come up, remembers the boxes, and takes its steps in other modal windows.
class BoxAnswers : public QObject {
public:
    BoxAnswers();

    /// The answer to the next box for which none is queued yet. Boxes without one are closed by Escape.
    void Answer(QMessageBox::StandardButton button) { answers_.push_back(button); }

    /// What the next file dialog gets: a path typed into it, or nothing for Cancel.
    void AnswerFile(const QString& path) { files_.push_back(path); }

    /// A step, behind those that are there: done once a window of its kind is the active one, also where the
    /// step before still stands in a call that has opened that window.
    template <typename Window>
    void When(std::function<void(Window&)> act) {
        steps_.push_back([act](QWidget* active) {
            auto* window = dynamic_cast<Window*>(active);
            return window == nullptr ? Act() : Act([act, window] { act(*window); });
        });
    }
    [[nodiscard]] bool AllDone() const { return steps_.empty(); }

    std::vector<SeenBox> Boxes;
    std::vector<QString> SuggestedFiles; ///< what stood in the file dialogs
    std::vector<QStringList> FileFilters;
    std::vector<QString> FileFolders; ///< where they began

    /// Boxes that begin so are closed at once and not remembered.
    QString Passed;

    /// Done as long as a box stands, before it is answered: a box is answered only when this says so. Empty
    /// for at once.
    std::function<bool(const QMessageBox& box)> MayAnswer;

private:
    using Act = std::function<void()>;

    void Look();
    void AnswerBox(QMessageBox& box);
    void AnswerFileDialog(QFileDialog& dialog);
    void DoStep();
    void GiveUp(QWidget& window);

    QTimer timer_;
    QElapsedTimer sinceStep_;
    QPointer<QObject> recorded_;
    QPointer<QObject> answered_;
    std::deque<QMessageBox::StandardButton> answers_;
    std::deque<QString> files_;
    std::deque<std::function<Act(QWidget* active)>> steps_; ///< each gives nothing where the window isn't its
    bool stepQueued_ = false;
};

/// Runs the event loop until a condition holds; false when it didn't within some seconds.
bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 20000);

/// Lets everything that is queued happen.
void RunEvents();

} // namespace thntfs::test
