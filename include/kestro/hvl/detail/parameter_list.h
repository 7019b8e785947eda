/* Walking along a parameter sequence (kind, type, name)(kind, type, name)... of offload.def; each item yields a
   comma and its expansion. */
#ifndef KESTRO_HVL_DETAIL_PARAMETER_LIST_H
#define KESTRO_HVL_DETAIL_PARAMETER_LIST_H

#define KESTRO_HVL_ENDED(end, ...) KESTRO_HVL_ENDED_(end, __VA_ARGS__)
#define KESTRO_HVL_ENDED_(end, ...) __VA_ARGS__##end

/* , float a, const double* p */
#define KESTRO_HVL_BY_VALUE(parameters) KESTRO_HVL_ENDED(_END, KESTRO_HVL_BY_VALUE_1 parameters)
#define KESTRO_HVL_BY_VALUE_1(kind, type, name) , KESTRO_HVL_BY_VALUE_##kind(type, name) KESTRO_HVL_BY_VALUE_2
#define KESTRO_HVL_BY_VALUE_2(kind, type, name) , KESTRO_HVL_BY_VALUE_##kind(type, name) KESTRO_HVL_BY_VALUE_1
#define KESTRO_HVL_BY_VALUE_1_END
#define KESTRO_HVL_BY_VALUE_2_END
#define KESTRO_HVL_BY_VALUE_scalar(type, name) type name
#define KESTRO_HVL_BY_VALUE_array(type, name) const type* name

/* , const float* a, const double* p */
#define KESTRO_HVL_BY_ADDRESS(parameters) KESTRO_HVL_ENDED(_END, KESTRO_HVL_BY_ADDRESS_1 parameters)
#define KESTRO_HVL_BY_ADDRESS_1(kind, type, name) , const type* name KESTRO_HVL_BY_ADDRESS_2
#define KESTRO_HVL_BY_ADDRESS_2(kind, type, name) , const type* name KESTRO_HVL_BY_ADDRESS_1
#define KESTRO_HVL_BY_ADDRESS_1_END
#define KESTRO_HVL_BY_ADDRESS_2_END

/* , a, p */
#define KESTRO_HVL_NAMES(parameters) KESTRO_HVL_ENDED(_END, KESTRO_HVL_NAMES_1 parameters)
#define KESTRO_HVL_NAMES_1(kind, type, name) , name KESTRO_HVL_NAMES_2
#define KESTRO_HVL_NAMES_2(kind, type, name) , name KESTRO_HVL_NAMES_1
#define KESTRO_HVL_NAMES_1_END
#define KESTRO_HVL_NAMES_2_END

/* , *a, p */
#define KESTRO_HVL_VALUES(parameters) KESTRO_HVL_ENDED(_END, KESTRO_HVL_VALUES_1 parameters)
#define KESTRO_HVL_VALUES_1(kind, type, name) , KESTRO_HVL_VALUES_##kind(name) KESTRO_HVL_VALUES_2
#define KESTRO_HVL_VALUES_2(kind, type, name) , KESTRO_HVL_VALUES_##kind(name) KESTRO_HVL_VALUES_1
#define KESTRO_HVL_VALUES_1_END
#define KESTRO_HVL_VALUES_2_END
#define KESTRO_HVL_VALUES_scalar(name) *name
#define KESTRO_HVL_VALUES_array(name) name

#endif
