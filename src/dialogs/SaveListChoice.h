#pragma once

#include <QCoreApplication>
#include <QDialog>

class QRadioButton;

namespace thntfs {

/// What the user wants a list file to hold.
struct SaveListWish {
    bool Below = false;    ///< the folder with all below it, not the rows that are shown
    bool BodyFile = false; ///< not a table
};

/// Asks what a list file is to hold, and how.
class CSaveListChoice : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CSaveListChoice)

public:
    /// `rows` that are shown; `folder` is the path of the one that is open, empty where there is none to
    /// offer.
    CSaveListChoice(QWidget* owner, int rows, const QString& folder);

    [[nodiscard]] SaveListWish Wish() const;

private:
    QWidget* MakeReach(int rows, const QString& folder);
    QWidget* MakeForm();

    QRadioButton* shown_;
    QRadioButton* below_;
    QRadioButton* table_;
    QRadioButton* bodyFile_;
};

} // namespace thntfs
