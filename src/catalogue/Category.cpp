#include "catalogue/Category.h"

#include <algorithm>
#include <utility>

void Category::addFeature(std::string name) { m_features.push_back(std::move(name)); }

std::string_view Category::getFeature(std::size_t index) const {
    if (index >= m_features.size()) return {};
    return m_features[index];
}

bool Category::hasFeature(std::string_view name) const {
    return std::find(m_features.begin(), m_features.end(), name) != m_features.end();
}

Category& Category::addChild(std::string name) {
    return *m_children.emplace_back(std::make_unique<Category>(std::move(name)));
}

Category* Category::getChild(std::size_t index) const {
    return index < m_children.size() ? m_children[index].get() : nullptr;
}

Category* Category::getChild(std::string_view name) const {
    const auto found = std::find_if(m_children.begin(), m_children.end(),
                                    [&](const auto& child) { return child->m_name == name; });
    return found != m_children.end() ? found->get() : nullptr;
}
