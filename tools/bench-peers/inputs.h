// What both zefbench and the peers work on.
#pragma once

#include <string>
#include <vector>

/// Catalog keys of the usual shape.
inline std::vector<std::string> catalogKeys() {
    std::vector<std::string> keys;
    for (const char* library : {"chat", "ft", "hxauth", "io", "loc", "mui", "muimisc", "plat", "smisc", "sui", "svr"})
        for (const char* place : {"connections", "dialog", "error", "options", "perms", "statusdialog"})
            for (const char* what : {"add_btn", "all_users_desc", "confirm_removal", "label", "not_allowed", "title",
                                     "tooltip", "unsaved_changes_warning", "value_fmt", "waiting"})
                keys.push_back(std::string(library) + "_" + place + "_" + what);
    return keys;
}

/// The order in which they are looked up: all of them, with no neighbours.
inline std::vector<const char*> lookUps(const std::vector<std::string>& keys) {
    std::vector<const char*> order;
    for (size_t i = 0; i < keys.size(); ++i)
        order.push_back(keys[i * 367 % keys.size()].c_str());
    return order;
}

/// 400 parameters in 136 KiB, in the form in which configurations travel.
inline std::string parametersXml() {
    static constexpr const char* const types[] = {"string", "bool", "int", "string", "enum"};
    static constexpr const char* const values[] = {"C:\\Users\\someone &amp; others\\Documents", "1", "32768",
                                                   "a value of some length, with &quot;marks&quot; in it", "second"};
    std::string text = "<?xml version=\"1.0\"?>\n<config>\n";
    for (unsigned i = 0; i < 400; ++i) {
        const unsigned kind = i % 5;
        const std::string type = types[kind];
        text += "<" + type + " name=\"Parameter" + std::to_string(i) + "\"\n        description=\"";
        text += "What this parameter is for, in a sentence or even two, as the help and the table of all parameters "
                "show it "
                "to the person at the screen.\"\n        advanced=\"false\"";
        if (type == "int")
            text += "\n        min=\"-2147483648\"\n        max=\"2147483647\"";
        text += ">\n";
        for (const char* priority : {"0", "10"})
            text += "    <value data=\"" + std::string(values[kind]) + "\" priority=\"" + priority + "\"/>\n";
        if (type == "enum")
            text += "    <opt data=\"first\"/>\n    <opt data=\"second\"/>\n";
        text += "</" + type + ">\n";
    }
    return text + "</config>\n";
}
