#include "RecordingWorkspace.h"

#include <QCoreApplication>
#include <QTimer>

std::optional<OpenFailure> RecordingWorkspace::open(const LaunchAddress &address)
{
    if (missingSchemes.contains(address.scheme())) {
        return OpenFailure{OpenFailure::Reason::noApplication, {}, {}};
    }
    opened.append(address.text());
    return std::nullopt;
}

SchemeHandler RecordingWorkspace::handlerFor(const QString &scheme) const
{
    if (missingSchemes.contains(scheme)) {
        return {};
    }
    return {SchemeHandler::State::application, QStringLiteral("Recorder")};
}

void RecordingWorkspace::openWithApplication(const LaunchAddress &address, const QString &application,
                                             OpenCompletion completion)
{
    openedWithApplication.append(application + u'|' + address.text());
    QTimer::singleShot(0, QCoreApplication::instance(),
                       [completion = std::move(completion), error = applicationError, id = applicationIdentifier] {
                           completion(error, error.isEmpty() ? id : QString());
                       });
}
