#include "sui/StatusDialogModel.h"

#include "score/StatusDb.h"
#include "score/StatusEvent.h"

#include <algorithm>
#include <cstring>

namespace sui {
namespace {
// Each text that stands under the key "text" of a node of its own.
struct TextSource {
    const char* path;
    plat::String StatusDialogModel::*field;
};
constexpr TextSource textSources[] = {
    {"Dlg/Banner", &StatusDialogModel::banner},
    {"Dlg/Banner/EditionBadge", &StatusDialogModel::editionBadge},
    {"Dlg/Signature", &StatusDialogModel::signature},
    {"Dlg/Catchphrase", &StatusDialogModel::catchphrase},
    {"Dlg/Authentication", &StatusDialogModel::authentication},
    {"Dlg/FooterHtml", &StatusDialogModel::footerHtml},
};

constexpr plat::String StatusDialogModel::*ownTexts[] = {&StatusDialogModel::connText,
                                                         &StatusDialogModel::connDetailHtml};

bool same(const plat::String& a, const plat::String& b) {
    return a.isNull() == b.isNull() && strcmp(a.c_str(), b.c_str()) == 0;
}
} // namespace

StatusDialogModel StatusDialogModel::from(const score::StatusDb& info, const score::StatusEventDb& events,
                                          uint32_t connections) {
    StatusDialogModel model;
    model.severity = events.maxSeverity(model.eventCount);
    model.connections = connections;
    for (const TextSource& source : textSources)
        if (const score::StatusDbNode* node = info.find(source.path))
            if (const char* text = node->getData("text"))
                model.*source.field = text;
    model.hasMode = info.find("Dlg/Banner/HasMode") != nullptr;
    model.hasPinLink = info.find("Dlg/PinLink") != nullptr;
    model.canChangePassword = info.find("Dlg/CanChangePassword") != nullptr;

    const score::StatusDbNode* conn = info.find("Dlg/Conn");
    if (const score::StatusDbNode* first = conn ? conn->firstChild() : nullptr) {
        model.connText = first->getData("text");
        model.connDetailHtml = first->getData("detailHtml");
    }
    const score::StatusDbNode* others = info.find("Dlg/ConnOther");
    for (const score::StatusDbNode* way = others ? others->firstChild() : nullptr; way; way = way->next())
        if (const char* text = way->getData("text"))
            model.otherWays.emplace_back(text);
    return model;
}

bool StatusDialogModel::operator==(const StatusDialogModel& other) const {
    const auto sameField = [&](plat::String StatusDialogModel::*field) { return same(this->*field, other.*field); };
    return severity == other.severity && eventCount == other.eventCount && connections == other.connections &&
           hasMode == other.hasMode && hasPinLink == other.hasPinLink && canChangePassword == other.canChangePassword &&
           std::all_of(std::begin(ownTexts), std::end(ownTexts), sameField) &&
           std::all_of(std::begin(textSources), std::end(textSources),
                       [&](const TextSource& source) { return sameField(source.field); }) &&
           std::equal(otherWays.begin(), otherWays.end(), other.otherWays.begin(), other.otherWays.end(), same);
}

} // namespace sui
