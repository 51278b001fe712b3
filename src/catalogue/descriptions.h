/** The explanatory text of each published parameter. */
#ifndef CATALOGUE_DESCRIPTIONS_H
#define CATALOGUE_DESCRIPTIONS_H

namespace catalogue {

/** Description of the parameter with this id; the empty text for those that have no record in the tree. */
const char* descriptionOf(int id);

} // namespace catalogue

#endif
