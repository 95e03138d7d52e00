#include "CallsManager.h"

// The browser-listing scripts, kept exactly as the macOS build runs them: a script host there executes the text,
// and on Linux the tab sources return the same nested list it would.
const QString CallsManager::myAppleScriptSafari = QStringLiteral(R"SCRIPT(        set windows_list to {}

        tell application "Safari"
            set window_list to every window # get the windows

            repeat with the_window in window_list # for every window
                set window_tabs to {}

                set window_name to the id of the_window
                set tab_list to every tab in the_window # get the tabs
                set this_window to {}

                repeat with the_tab in tab_list # for every tab
                    set the_url to the URL of the_tab # grab the URL
                    set the_title to the title of the_tab # grab the title


                    set local_tab to {"Title: " & the_title, "URL: " & the_url}
                    set window_tabs to window_tabs & {local_tab}
                end repeat

                set this_window to {{"Window ID: " & window_name, window_tabs}}
                set windows_list to windows_list & this_window
            end repeat


            return windows_list
        end tell)SCRIPT");

const QString CallsManager::myAppleScriptChrome = QStringLiteral(R"SCRIPT(        set windows_list to {}

        tell application "Google Chrome"
            set window_list to every window # get the windows

            repeat with the_window in window_list # for every window
                set window_tabs to {}

                set window_name to the id of the_window
                set tab_list to every tab in the_window # get the tabs
                set this_window to {}

                repeat with the_tab in tab_list # for every tab
                    set the_url to the URL of the_tab # grab the URL
                    set the_title to the title of the_tab # grab the title


                    set local_tab to {"Title: " & the_title, "URL: " & the_url}
                    set window_tabs to window_tabs & {local_tab}
                end repeat

                set this_window to {{"Window ID: " & window_name, window_tabs}}
                set windows_list to windows_list & this_window
            end repeat


            return windows_list
        end tell)SCRIPT");
