#include "access/MountTable.h"

#include <utility>

#include "platform/MountPoints.h"

namespace vostrel {

MountTable::MountTable(const std::vector<std::filesystem::path>& mountPoints) {
    for (const auto& point : mountPoints) {
        auto form = PathForm::of(point);
        if (form && !form->key().empty()) all.push_back({point, std::move(*form)});
    }
}

MountTable MountTable::ofSystem() {
    return MountTable(mountPoints());
}

MountTable MountTable::withoutThoseHolding(const PathForm& place) const {
    MountTable rest = *this;
    std::erase_if(rest.all, [&](const Mount& mount) { return mount.form.contains(place); });
    return rest;
}

std::vector<std::string> MountTable::paths() const {
    std::vector<std::string> paths;
    for (const Mount& mount : all)
        paths.push_back(mount.path);
    return paths;
}

}  // namespace vostrel
