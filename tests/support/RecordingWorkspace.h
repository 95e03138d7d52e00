#pragma once

#include "calls/Workspace.h"

#include <QStringList>

/// Stands in for the desktop's opener where a test checks the address built rather than what a handler does with it:
/// records what would have been opened. openWithApplication answers like the real one, later on the event loop.
class RecordingWorkspace : public Workspace
{
public:
    void open(const LaunchAddress &address) override { opened.append(address.text()); }

    void openWithApplication(const LaunchAddress &address, const QString &application,
                             OpenCompletion completion) override;

    QStringList opened;
    /// "application|address" per call of openWithApplication.
    QStringList openedWithApplication;
    /// When set, openWithApplication fails with this text.
    QString applicationError;
    QString applicationIdentifier = QStringLiteral("google-chrome");
};
