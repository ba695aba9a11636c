#pragma once

#include "content/EntryListFile.h"

#include <QCoreApplication>
#include <QString>
#include <string>

class QWidget;

namespace thntfs {

class CTHNTFSListView;
class CTHNTFSTreeView;
class JobControl;
class MessageTarget;
class StatusPanes;

/// A list on its way into a file. The worker has it while it runs.
struct ListRun {
    EntryListWish Wish;
    std::string Path;
    EntryListOutcome Outcome;
};

/// The saving of a list of entries for other programs: its questions and its job.
class ListJob {
    Q_DECLARE_TR_FUNCTIONS(ListJob)

public:
    /// The dialogs stand over the owner; the worker reports to the frame. All are the caller's and live
    /// longer.
    ListJob(JobControl& job, MessageTarget& frame, StatusPanes& panes, QWidget& owner);

    /// Asks what to write and where to, and starts the job.
    void Begin(const CTHNTFSListView& list, const CTHNTFSTreeView& tree);

    /// What is told at the end.
    [[nodiscard]] QString EndText() const;

private:
    bool Ask(const CTHNTFSListView& list, const QString& folder);
    bool AskPlace(const QString& folder);

    JobControl& job_;
    MessageTarget& frame_;
    StatusPanes& panes_;
    QWidget& owner_;
    ListRun run_;
};

} // namespace thntfs
