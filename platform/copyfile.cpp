#include <copyfile.h>
