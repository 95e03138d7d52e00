#include "DesktopActivation.h"

#include "HomeWindowViewModel.h"
#include "WindowActivation.h"

#include <QDBusConnection>
#include <QDBusError>

const QStringList DesktopActivation::actions = {u"new-meet"_qs, u"call-from-clipboard"_qs, u"dialer"_qs};

DesktopActivation::DesktopActivation(QObject *exported,
                                     std::function<void(const QString &, const QString &)> showWindow)
    : QDBusAbstractAdaptor(exported)
    , m_showWindow(std::move(showWindow))
{}

bool DesktopActivation::runAction(HomeWindowViewModel &viewModel, const QString &name)
{
    if (name == u"new-meet") {
        viewModel.startNewGoogleMeet();
    } else if (name == u"call-from-clipboard") {
        viewModel.makeCallFromClipboard();
    } else if (name == u"dialer") {
        viewModel.setIsDialerShown(true);
    } else {
        return false;
    }
    return true;
}

void DesktopActivation::Activate(const QVariantMap &platformData)
{
    Q_EMIT used();
    m_showWindow(QString(), WindowActivation::token(platformData));
}

namespace {
// Answers the call with an error instead of the empty reply.
void refuse(const QDBusMessage &message, QDBusError::ErrorType error, const QString &text)
{
    message.setDelayedReply(true);
    QDBusConnection::sessionBus().send(message.createErrorReply(error, text));
}
} // namespace

void DesktopActivation::ActivateAction(const QString &name, const QVariantList &parameter,
                                       const QVariantMap &platformData, const QDBusMessage &message)
{
    Q_UNUSED(parameter);
    Q_EMIT used();
    if (!actions.contains(name)) {
        refuse(message, QDBusError::InvalidArgs, u"Telverra has no action named " + name);
        return;
    }
    m_showWindow(name, WindowActivation::token(platformData));
}

void DesktopActivation::Open(const QStringList &uris, const QVariantMap &platformData, const QDBusMessage &message)
{
    Q_UNUSED(platformData);
    Q_EMIT used();
    refuse(message, QDBusError::NotSupported, u"Telverra opens no files or addresses this way: " + uris.join(u", "));
}
