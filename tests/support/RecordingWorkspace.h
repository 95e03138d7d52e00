#pragma once

#include "calls/Workspace.h"

#include <QStringList>

/// Stands in for the desktop's opener where a test checks the address built rather than what a handler does with it:
/// records what would have been opened. openWithApplication answers like the real one, later on the event loop.
class RecordingWorkspace : public Workspace
{
public:
    /// Records the address, or fails as the desktop does when its scheme is among `missingSchemes`.
    std::optional<OpenFailure> open(const LaunchAddress &address) override;
    /// "Recorder" for every scheme but the missing ones.
    SchemeHandler handlerFor(const QString &scheme) const override;

    void openWithApplication(const LaunchAddress &address, const QString &application,
                             OpenCompletion completion) override;

    QStringList opened;
    /// Schemes no application opens here.
    QStringList missingSchemes;
    /// "application|address" per call of openWithApplication.
    QStringList openedWithApplication;
    /// When set, openWithApplication fails with this text.
    QString applicationError;
    QString applicationIdentifier = QStringLiteral("google-chrome");
};
