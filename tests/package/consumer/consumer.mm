#include "consumer.m"
