/** A category of the XML document: a name, the categories below it and the features in it. */
#ifndef CATALOGUE_CATEGORY_H
#define CATALOGUE_CATEGORY_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class Category {
public:
    explicit Category(std::string name) : m_name(std::move(name)) {}
    Category(const Category&) = delete;
    Category& operator=(const Category&) = delete;

    std::string getName() const { return m_name; }

    /** Appends; a feature may be listed more than once. */
    void addFeature(std::string name);
    std::size_t getFeatureCount() const { return m_features.size(); }
    /** The feature's name, valid until the next is added; empty past the end. */
    std::string_view getFeature(std::size_t index) const;
    bool hasFeature(std::string_view name) const;

    /** Appends a new child, which this category owns. */
    Category& addChild(std::string name);
    std::size_t getChildCount() const { return m_children.size(); }
    /** Null past the end. */
    Category* getChild(std::size_t index) const;
    /** The first child of that name, or null. */
    Category* getChild(std::string_view name) const;
    bool hasChild(std::string_view name) const { return getChild(name) != nullptr; }

private:
    std::string m_name;
    std::vector<std::unique_ptr<Category>> m_children;
    std::vector<std::string> m_features;
};

#endif
