#pragma once

#include "LaunchAddress.h"

#include <QString>

#include <functional>
#include <optional>

/// Why the desktop did not open an address.
struct OpenFailure
{
    enum class Reason
    {
        /// No application on this computer is registered for the address's scheme.
        noApplication,
        /// The registered application could not be started.
        launchFailed,
    };
    Reason reason = Reason::noApplication;
    /// The application's name (launchFailed).
    QString application;
    /// The system's own words (launchFailed).
    QString detail;
};

/// Which application opens addresses of one scheme.
struct SchemeHandler
{
    enum class State
    {
        /// None is registered: opening such an address fails.
        none,
        /// `name` opens them.
        application,
        /// The desktop decides when an address is opened (inside a sandbox, through its portal).
        chosenAtLaunch,
    };
    State state = State::none;
    QString name;
};

/// The system's opener: hands an address to the application registered for its scheme, or to a named application.
class Workspace
{
public:
    /// Called once with an error text (empty on success) and the identifier of the application that opened the
    /// address (its executable's file name).
    using OpenCompletion = std::function<void(const QString &errorText, const QString &applicationIdentifier)>;

    virtual ~Workspace();

    /// Opens the address with the application registered for its scheme. Nothing when it was handed over, else why
    /// it was not.
    virtual std::optional<OpenFailure> open(const LaunchAddress &address) = 0;

    /// The application that open() would hand an address of this scheme ("tel", "https") to.
    virtual SchemeHandler handlerFor(const QString &scheme) const = 0;

    /// Opens a web address in the named application ("Google Chrome"). The completion runs later on the calling
    /// thread's event loop.
    virtual void openWithApplication(const LaunchAddress &address, const QString &application,
                                     OpenCompletion completion) = 0;
};

/// The desktop's opener. The handler is the one the XDG MIME applications rules name (mimeapps.list, the desktop
/// files' MimeType=), found and started through GIO; inside a Flatpak the OpenURI portal chooses and starts it.
/// Google Chrome is looked up on the PATH.
class SystemWorkspace : public Workspace
{
public:
    /// `chromeExecutable` may name an absolute path to use instead of the PATH look-up.
    explicit SystemWorkspace(const QString &chromeExecutable = {});

    std::optional<OpenFailure> open(const LaunchAddress &address) override;
    SchemeHandler handlerFor(const QString &scheme) const override;
    void openWithApplication(const LaunchAddress &address, const QString &application,
                             OpenCompletion completion) override;

    /// The executable that stands for Google Chrome here, or empty when none is installed.
    QString chromeExecutable() const;

private:
    QString m_chromeExecutable;
};
