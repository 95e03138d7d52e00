#include "RecordingWorkspace.h"

#include <QCoreApplication>
#include <QTimer>

void RecordingWorkspace::openWithApplication(const LaunchAddress &address, const QString &application,
                                             OpenCompletion completion)
{
    openedWithApplication.append(application + u'|' + address.text());
    QTimer::singleShot(0, QCoreApplication::instance(),
                       [completion = std::move(completion), error = applicationError, id = applicationIdentifier] {
                           completion(error, error.isEmpty() ? id : QString());
                       });
}
