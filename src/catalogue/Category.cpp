#include "catalogue/Category.h"

#include <algorithm>
#include <utility>

Category::Category(std::string name, Category* parent) : m_name(std::move(name)) {
    if (parent != nullptr) parent->addChild(this);
}

Category::~Category() {
    for (Category* child : m_children)
        delete child;
}

void Category::addFeature(std::string name) { m_features.push_back(std::move(name)); }

std::string_view Category::getFeature(std::size_t index) const {
    if (index >= m_features.size()) return {};
    return m_features[index];
}

bool Category::hasFeature(std::string_view name) const {
    return std::find(m_features.begin(), m_features.end(), name) != m_features.end();
}

void Category::addChild(Category* child) { m_children.push_back(child); }

Category* Category::getChild(std::size_t index) const {
    return index < m_children.size() ? m_children[index] : nullptr;
}

Category* Category::getChild(std::string_view name) const {
    const auto found = std::find_if(m_children.begin(), m_children.end(),
                                    [&](const Category* child) { return child->m_name == name; });
    return found != m_children.end() ? *found : nullptr;
}
