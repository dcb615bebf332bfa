#include "rdr/XmlConfig.h"

#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/Xml.h"
#include "rdr/OutStream.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace plat::XmlConfig {
namespace {

[[noreturn]] void incompatible() { throw Exception("Incompatible XML config"); }

String joinFlags(const ConfigParameter& param) {
    std::string joined;
    for (const std::string& flag : param.getFlags())
        joined += (joined.empty() ? "" : ",") + flag;
    return joined.c_str();
}

void writeDescription(rdr::OutStream& out, const ConfigParameter& param, Texts texts) {
    const bool asKey = texts == Texts::Keys && param.getLocDesc();
    const char* const text = asKey ? param.getLocDesc() : param.getDescription();
    out.writeStr("        %s=\"%s\"\n", asKey ? "locDesc" : "description", xmlEscape(text).c_str());
}

// As strtol reads it, cut to the range of int.
int toInt(const char* text, int fallback) {
    if (!text)
        return fallback;
    return static_cast<int>(std::clamp<long>(std::strtol(text, nullptr, 10), INT_MIN, INT_MAX));
}

bool isTag(const XmlNode& node, const char* tag) { return node.isElement(tag); }

void checkElement(const XmlNode& node) {
    static constexpr const char* tags[] = {"string", "bool", "int", "enum", "binary", "s64"};
    if (!node.attribute("name") || !(node.attribute("description") || node.attribute("locDesc")))
        incompatible();
    if (std::none_of(std::begin(tags), std::end(tags), [&](const char* tag) { return isTag(node, tag); }))
        incompatible();
    if (node.countChildren("value") == 0 || (isTag(node, "enum") && node.countChildren("opt") == 0))
        incompatible();
    for (const XmlNode* child = node.firstChild(); child; child = child->next()) {
        const bool isValue = child->isElement("value");
        if ((isValue || child->isElement("opt")) && !child->attribute("data"))
            incompatible();
        if (isValue && !child->attribute("priority"))
            incompatible();
    }
}

bool isAdvanced(const XmlNode& node) { return strEqualsNoCase(node.attribute("advanced"), "true"); }

ConfigParameter* addEnum(Configuration& config, const XmlNode& node, ParamText text) {
    std::vector<const char*> names;
    for (const XmlNode* child = node.firstChild(); child; child = child->next())
        if (child->isElement("opt"))
            names.push_back(child->attribute("data"));
    names.push_back(nullptr);
    return config.addEnum(node.attribute("name"), text, names[0], names.data(), isAdvanced(node),
                          node.attribute("flags"));
}

ConfigParameter* addParam(Configuration& config, const XmlNode& node) {
    const char* const key = node.attribute("locDesc");
    const ParamText text = key ? ParamText(LocKey(key)) : ParamText(node.attribute("description"));
    const char* const name = node.attribute("name");
    const char* const flags = node.attribute("flags");
    const bool advanced = isAdvanced(node);
    if (isTag(node, "string"))
        return config.addString(name, text, "", advanced, flags);
    if (isTag(node, "bool"))
        return config.addBool(name, text, /*defaultValue=*/false, advanced, flags);
    if (isTag(node, "int"))
        return config.addInt(name, text, 0, advanced, toInt(node.attribute("min"), INT_MIN),
                             toInt(node.attribute("max"), INT_MAX), flags);
    if (isTag(node, "binary"))
        return config.addBinary(name, text, nullptr, 0, advanced, flags);
    if (isTag(node, "s64"))
        return config.addS64(name, text, 0, advanced, flags);
    return addEnum(config, node, text);
}

void setValues(ConfigParameter& param, const XmlNode& node) {
    for (const XmlNode* child = node.firstChild(); child; child = child->next())
        if (child->isElement("value"))
            param.setParam(child->attribute("data"), toInt(child->attribute("priority"), 0));
}

} // namespace

void writeHeader(rdr::OutStream& out) { out.writeStr("<?xml version=\"1.0\"?>\n<config>\n"); }

void writeFooter(rdr::OutStream& out) { out.writeStr("</config>\n"); }

void writeParam(rdr::OutStream& out, const ConfigParameter& param, Texts texts) {
    out.writeStr("<%-6s name=\"%s\"\n", param.getTypeName(), xmlEscape(param.getName()).c_str());
    writeDescription(out, param, texts);
    out.writeStr("        advanced=\"%s\"", param.isAdvanced() ? "true" : "false");
    if (!param.getFlags().empty())
        out.writeStr("\n        flags=\"%s\"", xmlEscape(joinFlags(param).c_str()).c_str());
    if (const auto* const number = dynamic_cast<const IntParameter*>(&param))
        out.writeStr("\n        min=\"%i\"\n        max=\"%i\"", number->min, number->max);
    out.writeStr(">\n");
    for (const auto& [priority, value] : param.getValues())
        out.writeStr("    <value data=\"%s\" priority=\"%i\"/>\n", xmlEscape(value.c_str()).c_str(), priority);
    if (const auto* const choice = dynamic_cast<const EnumParameter*>(&param))
        for (const char* const* name = choice->getNames(); *name; ++name)
            out.writeStr("    <opt data=\"%s\"/>\n", xmlEscape(*name).c_str());
    out.writeStr("</%s>\n", param.getTypeName());
}

void write(rdr::OutStream& out, const Configuration& config, Texts texts, bool withHidden, Filter* filter) {
    std::vector<ConfigParameter*> params = config.getParams();
    std::erase_if(params, [&](const ConfigParameter* param) {
        return (param->isHidden() && !withHidden) ||
               (filter && !filter->accepts(param->getName(), param->getTypeName(), param->isAdvanced()));
    });
    Configuration::sort(params);
    writeHeader(out);
    for (const ConfigParameter* const param : params)
        writeParam(out, *param, texts);
    writeFooter(out);
}

void read(Configuration& config, const char* text, size_t lenBytes, Filter* filter) {
    XmlDocument document;
    if (!document.parse(text, lenBytes))
        throw ExceptionFmt("XML error %i:%i %s", document.errorLine(), document.errorColumn(), document.errorText());
    const XmlNode& root = *document.root();
    if (!root.isElement("config"))
        incompatible();
    // All is looked at before anything is dropped.
    for (const XmlNode* node = root.firstChild(); node; node = node->next())
        if (node->kind() == XmlNode::Kind::Element)
            checkElement(*node);
    config.clear();
    for (const XmlNode* node = root.firstChild(); node; node = node->next()) {
        if (node->kind() != XmlNode::Kind::Element)
            continue;
        if (filter && !filter->accepts(node->attribute("name"), node->tag(), isAdvanced(*node)))
            continue;
        setValues(*addParam(config, *node), *node);
    }
}

void read(Configuration& config, const char* text, Filter* filter) {
    read(config, text, std::strlen(strOrEmpty(text)), filter);
}

} // namespace plat::XmlConfig
