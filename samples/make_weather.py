#!/usr/bin/env python3
"""Writes twelve-days.epw: the 21st of each month in Lyon under a clear sky, hour by hour.

usage: python3 make_weather.py > twelve-days.epw

Made by plain formulas, so that it is free of anybody's rights: the sun's declination by Cooper,
direct irradiation by a constant optical depth, a sky of a tenth of the direct one and more where
the sun stands low. Not the weather of any place.
"""

import math

LATITUDE, LONGITUDE, ZONE, ELEVATION = 45.764, 4.8357, 1.0, 170.0
MONTHS = ["January", "February", "March", "April", "May", "June", "July", "August", "September",
          "October", "November", "December"]
FIRST_DAYS = [0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334]


def sine_of_elevation(day_of_year, clock):
    declination = math.radians(23.45) * math.sin(2 * math.pi * (284 + day_of_year) / 365)
    hour_angle = math.radians(15 * (clock - 12 + LONGITUDE / 15 - ZONE))
    latitude = math.radians(LATITUDE)
    return (math.sin(latitude) * math.sin(declination)
            + math.cos(latitude) * math.cos(declination) * math.cos(hour_angle))


def main():
    print(f"LOCATION,Lyon,-,FRA,synthetic,000000,{LATITUDE},{LONGITUDE},{ZONE},{ELEVATION}")
    print("DESIGN CONDITIONS,0")
    print("TYPICAL/EXTREME PERIODS,0")
    print("GROUND TEMPERATURES,0")
    print("HOLIDAYS/DAYLIGHT SAVINGS,No,0,0,0")
    print("COMMENTS 1,Synthetic clear days for tests")
    print("COMMENTS 2,")
    periods = ",".join(f"{name},Sunday,{month}/21,{month}/21"
                       for month, name in enumerate(MONTHS, 1))
    print(f"DATA PERIODS,12,1,{periods}")
    for month in range(1, 13):
        day_of_year = FIRST_DAYS[month - 1] + 21
        for hour in range(1, 25):
            sine = sine_of_elevation(day_of_year, hour - 0.5)
            direct = round(1353 * 0.7 ** (sine ** -0.678)) if sine > 0.02 else 0
            diffuse = round(0.1 * direct + 60 * sine) if sine > 0 else 0
            total = round(direct * max(sine, 0) + diffuse)
            print(f"2001,{month},21,{hour},60,?9?9?9?9E0?9?9?9?9?9?9?9?9?9?9?9?9?9?9?9*9*9?9?9?9,"
                  f"15.0,5.0,50,99300,9999,9999,9999,{total},{direct},{diffuse},"
                  "999999,999999,999999,9999,180,2.0,2,2,9999,99999,9,999999999,15,0.1000,0,88,"
                  "0.200,0.0,0.0")


main()
