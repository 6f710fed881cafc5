#include "CatalogueState.h"

int ItemEditMode = 0;
int CurrentItemID = 0;
