#pragma once

#include "LaunchAddress.h"

#include <QString>

#include <functional>

/// The system's opener: hands an address to the application registered for its scheme, or to a named application.
class Workspace
{
public:
    /// Called once with an error text (empty on success) and the identifier of the application that opened the
    /// address (its executable's file name).
    using OpenCompletion = std::function<void(const QString &errorText, const QString &applicationIdentifier)>;

    virtual ~Workspace();

    /// Opens the address with its registered handler. Whether a handler exists is not reported.
    virtual void open(const LaunchAddress &address) = 0;

    /// Opens a web address in the named application ("Google Chrome"). The completion runs later on the calling
    /// thread's event loop.
    virtual void openWithApplication(const LaunchAddress &address, const QString &application,
                                     OpenCompletion completion) = 0;
};

/// The desktop's opener: `xdg-open` (started without a shell, so the address reaches the handler exactly as
/// written), or Qt's desktop services where there is no xdg-open. Google Chrome is looked up on the PATH.
class SystemWorkspace : public Workspace
{
public:
    /// `chromeExecutable` may name an absolute path to use instead of the PATH look-up.
    explicit SystemWorkspace(const QString &chromeExecutable = {});

    void open(const LaunchAddress &address) override;
    void openWithApplication(const LaunchAddress &address, const QString &application,
                             OpenCompletion completion) override;

    /// The executable that stands for Google Chrome here, or empty when none is installed.
    QString chromeExecutable() const;

private:
    QString m_chromeExecutable;
};
