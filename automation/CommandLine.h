// The switches of the server's command line.
#pragma once

#include <string_view>

enum class ServerSwitch
{
    None,
    RegServer,
    UnregServer
};

// The first switch in the text, which is a whole command line with the program's own path. A switch
// is "RegServer" or "UnregServer" as a whole word, in any case, right behind a "-" or "/" that may
// stand anywhere, also inside the path; a blank, a tab or the end of the text ends the word.
ServerSwitch ParseCommandLine(std::wstring_view text);
