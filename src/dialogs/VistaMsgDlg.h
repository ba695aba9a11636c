#pragma once

#include <QCoreApplication>
#include <QDialog>

namespace thntfs {

/// The notice that the setting "VistaMsg/StartUp" asks for at start, or takes away. The setting is written
/// back when the dialog goes, whether it was shown or not.
class CVistaMsgDlg : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CVistaMsgDlg)

public:
    explicit CVistaMsgDlg(QWidget* owner);
    ~CVistaMsgDlg() override;
    CVistaMsgDlg(const CVistaMsgDlg&) = delete;
    CVistaMsgDlg& operator=(const CVistaMsgDlg&) = delete;

    /// Whether it is to be shown.
    [[nodiscard]] bool IsWanted() const { return wanted_; }

private:
    QWidget* Icon();
    QLayout* Texts();
    QLayout* LowerPart();

    bool wanted_;
};

} // namespace thntfs
