#!/usr/bin/env python3
# Writes the example worlds. Run from anywhere: python3 examples/make_examples.py
import math
import os
import plistlib
import random

OUT = os.path.dirname(os.path.abspath(__file__))
G_AU = 4 * math.pi ** 2

# The axis marker that goes with the grid is 20 units across whatever the
# world's scale; worlds a few units wide (AU, the figure eight) switch the grid
# off, or the marker would fill the view.
def view(name, cam, focus=(0.0, 0.0, 0.0), spacing=1.0, autodist=5.0, grid=(0.15, 0.15, 0.2), com=False,
         show_grid=True, track_body=0, traces_relative_to=None):
    v = {
        "Camera position X": float(cam[0]), "Camera position Y": float(cam[1]), "Camera position Z": float(cam[2]),
        "Camera focus X": float(focus[0]), "Camera focus Y": float(focus[1]), "Camera focus Z": float(focus[2]),
        "Trackball enable": True,
        "Trackball roll": 0.0, "Trackball pitch": 0.0, "Trackball yaw": 0.0,
        "Track center of mass enable": com,
        "Camera autodistance": float(autodist),
        "Track body enable": track_body != 0, "Track body ID": track_body,
        "Gridline enable": show_grid, "Show trace lines": True, "Show vectors": False,
        "Gridline spacing": float(spacing),
        "Gridline color R": grid[0], "Gridline color G": grid[1], "Gridline color B": grid[2],
        "Selected body ID": 0,
        "Window width": 640, "Window height": 480,
        "View name": name,
    }
    if traces_relative_to is not None:
        v["Traces relative to"] = traces_relative_to
    return v

def body(name, pos, vel, mass, radius, color, trace=True, vectors=False):
    return {
        "Position X": float(pos[0]), "Position Y": float(pos[1]), "Position Z": float(pos[2]),
        "Velocity X": float(vel[0]), "Velocity Y": float(vel[1]), "Velocity Z": float(vel[2]),
        "Mass": float(mass), "Radius": float(radius),
        "Color R": float(color[0]), "Color G": float(color[1]), "Color B": float(color[2]),
        "Trace enable": trace, "Show vectors": vectors, "Body name": name,
    }

def world(name, dt, G, ms, bodies, views, merge=True, restitution=1.0, trace_points=20000):
    d = {
        "Time step": float(dt), "Adaptive time stepping": False,
        "Gravitational constant": float(G), "Collision model": merge,
        "Coefficient of restitution": float(restitution),
        "Milliseconds per update": float(ms), "World name": name,
        "Trace history points": trace_points,
        "Bodies": {str(100 + i): b for i, b in enumerate(bodies)},
        "Views": {str(i): v for i, v in enumerate(views)},
    }
    return d

def zero_momentum(bodies):
    # Gives the first body the velocity that makes the total momentum zero.
    p = [0.0, 0.0, 0.0]
    for b in bodies[1:]:
        p[0] += b["Mass"] * b["Velocity X"]; p[1] += b["Mass"] * b["Velocity Y"]; p[2] += b["Mass"] * b["Velocity Z"]
    m = bodies[0]["Mass"]
    bodies[0]["Velocity X"] = -p[0] / m; bodies[0]["Velocity Y"] = -p[1] / m; bodies[0]["Velocity Z"] = -p[2] / m

def save(fname, d):
    with open(f"{OUT}/{fname}", "wb") as f:
        plistlib.dump(d, f, sort_keys=False)

# 1. Inner solar system: AU, years, solar masses; each planet starts at its
# perihelion with the Keplerian speed there.
planets = [
    # name, a [AU], e, longitude of perihelion [deg], mass [Msun], radius, colour
    ("Mercury", 0.387098, 0.205630, 77.46, 1.6601e-7, 0.025, (0.65, 0.62, 0.6)),
    ("Venus", 0.723332, 0.006772, 131.53, 2.4478e-6, 0.035, (0.95, 0.8, 0.5)),
    ("Earth", 1.000000, 0.016709, 102.94, 3.0035e-6, 0.037, (0.3, 0.55, 1.0)),
    ("Mars", 1.523679, 0.093400, 336.04, 3.2272e-7, 0.03, (0.9, 0.4, 0.25)),
]
bs = [body("Sun", (0, 0, 0), (0, 0, 0), 1.0, 0.08, (1.0, 0.85, 0.3), trace=False)]
for name, a, e, lp, m, r, c in planets:
    rp = a * (1 - e)
    vp = math.sqrt(G_AU * (1 + m) * (1 + e) / (a * (1 - e)))
    th = math.radians(lp)
    bs.append(body(name, (rp * math.cos(th), rp * math.sin(th), 0.0),
                   (-vp * math.sin(th), vp * math.cos(th), 0.0), m, r, c))
zero_momentum(bs)
save("inner-solar-system.ovd", world("Inner solar system", 0.001, G_AU, 5.0, bs,
     [view("Inner solar system", (0.0, -2.6, 3.6), spacing=1.0, show_grid=False)]))

# 2. Figure-eight: the three-body choreography of Chenciner and Montgomery,
# G = 1, m = 1, period 6.32591398.
x1 = (0.97000436, -0.24308753, 0.0)
v3 = (-0.93240737, -0.86473146, 0.0)
v1 = (-v3[0] / 2, -v3[1] / 2, 0.0)
bs = [body("A", x1, v1, 1.0, 0.04, (1.0, 0.35, 0.3)),
      body("B", tuple(-c for c in x1), v1, 1.0, 0.04, (0.35, 1.0, 0.4)),
      body("C", (0.0, 0.0, 0.0), v3, 1.0, 0.04, (0.35, 0.5, 1.0))]
save("figure-eight.ovd", world("Figure-eight three-body orbit", 0.002, 1.0, 2.0, bs,
     [view("Figure eight", (0.0, 0.0, 3.2), spacing=1.0, show_grid=False)]))

# 3. Binary star with a circumbinary planet (AU, years, solar masses).
mA, mB, ab = 1.0, 0.6, 0.5
M = mA + mB
vrel = math.sqrt(G_AU * M / ab)
ap = 2.5
mp = 9.5e-4
vp = math.sqrt(G_AU * (M + mp) / ap)
bs = [body("Primary", (-mB / M * ab, 0, 0), (0, -mB / M * vrel, 0), mA, 0.06, (1.0, 0.9, 0.55), trace=True),
      body("Secondary", (mA / M * ab, 0, 0), (0, mA / M * vrel, 0), mB, 0.045, (1.0, 0.5, 0.3), trace=True),
      body("Planet", (0, ap, 0), (-vp, 0, 0), mp, 0.035, (0.4, 0.7, 1.0))]
# Keep the centre of mass at rest: the stars share the planet's recoil.
px = mp * vp
for b in bs[:2]:
    b["Velocity X"] += px / M
save("binary-star-planet.ovd", world("Binary star with a planet", 0.001, G_AU, 2.0, bs,
     [view("Binary", (0.0, -4.5, 6.5), spacing=1.0, show_grid=False)]))

# 4. Planet formation: a star and a ring of planetesimals on crossing,
# slightly eccentric and inclined orbits; collisions merge them into planets.
rng = random.Random(20240301)
bs = [body("Star", (0, 0, 0), (0, 0, 0), 1.0, 0.07, (1.0, 0.85, 0.35), trace=False)]
RADIUS = 0.03
while len(bs) < 61:
    a = rng.uniform(0.6, 1.6)
    th = rng.uniform(0, 2 * math.pi)
    e = rng.uniform(0.0, 0.15)
    inc = rng.uniform(-0.03, 0.03)
    v = math.sqrt(G_AU / a) * (1 + e / 2)
    pos = (a * math.cos(th), a * math.sin(th), a * inc * rng.uniform(-1, 1))
    # No two planetesimals start in contact: every merge happens on screen.
    if any(math.dist(pos, (b["Position X"], b["Position Y"], b["Position Z"])) < 2.5 * RADIUS for b in bs[1:]):
        continue
    vel = (-v * math.sin(th) + rng.gauss(0, 0.05) * v, v * math.cos(th) + rng.gauss(0, 0.05) * v, v * inc)
    m = rng.uniform(1e-6, 5e-6)
    grey = rng.uniform(0.5, 0.9)
    bs.append(body(f"Planetesimal {len(bs) - 1}", pos, vel, m, RADIUS,
                   (grey, grey * rng.uniform(0.7, 1.0), grey * rng.uniform(0.5, 0.9)), trace=False))
zero_momentum(bs)
save("planet-formation.ovd", world("Planet formation", 0.002, G_AU, 2.0, bs,
     [view("Disc", (0.0, -2.8, 3.2), spacing=1.0, show_grid=False)]))

# 5. Rebound: balls fall onto a heavy sphere and bounce, two more collide head
# on in orbit. Collisions are elastic (restitution 1), so the total energy
# stays constant while the balls keep bouncing.
bs = [body("Ground", (0, 0, 0), (0, 0, 0), 1000.0, 5.0, (0.35, 0.45, 0.35), trace=False)]
for i, (d, h) in enumerate([((1, 0, 0), 12.0), ((0, 1, 0), 16.0), ((-1, 0, 0), 20.0), ((0, -1, 0), 24.0)]):
    bs.append(body(f"Ball {i}", tuple(h * c for c in d), (0, 0, 0), 1.0, 0.6,
                   [(1.0, 0.4, 0.3), (1.0, 0.85, 0.3), (0.4, 0.9, 0.4), (0.4, 0.6, 1.0)][i]))
r = 10.0
vo = math.sqrt(1000.0 / r)
s = math.sqrt(0.5)
bs.append(body("Orbiter east", (r * s, r * s, 0), (-vo * s, vo * s, 0), 1.0, 0.6, (0.9, 0.5, 1.0)))
bs.append(body("Orbiter west", (-r * s, r * s, 0), (-vo * s, -vo * s, 0), 1.0, 0.6, (0.3, 1.0, 1.0)))
zero_momentum(bs)
save("rebound.ovd", world("Rebound", 0.002, 1.0, 4.0, bs, [view("Bounce", (0.0, -30.0, 45.0), spacing=10.0)],
     merge=False, restitution=1.0))

# 6. Sun, Earth and Moon at their true masses and distances, in units of
# 1000 km, days and Earth masses (the views' near clipping plane lies one unit
# from the camera, so a close look at the Earth needs a unit much smaller than
# the AU), with the radii four times true size. G follows from the Gaussian
# gravitational constant: G M_sun = k^2 AU^3 / day^2. The Earth and the Moon
# start on circular orbits about their barycentre, which circles the Sun.
# A camera that tracks a body looks along the body's direction of motion,
# which for the Earth lies in the orbital plane and would show the Moon's
# orbit edge on; so the whole system drifts along -z at twice the Earth's
# orbital speed. That changes no motion relative to the Sun (the same forces,
# the same orbits) and tilts the direction of motion out of the plane: the
# Earth's camera looks down on the Moon's loop from 63 degrees, and the camera
# that tracks the centre of mass, which moves straight along -z, looks down on
# the Earth's orbit. A month passes in a second, a year in fifteen.
AU = 149597.8707
m_sun, m_earth, m_moon = 332946.0487, 1.0, 0.0123000371
G_EARTH = 0.01720209895 ** 2 * AU ** 3 / m_sun
a_moon = 384.4
m_pair = m_earth + m_moon
v_pair = math.sqrt(G_EARTH * (m_sun + m_pair) / AU)
v_rel = math.sqrt(G_EARTH * m_pair / a_moon)
bs = [body("Sun", (0, 0, 0), (0, 0, 0), m_sun, 4 * 695.7, (1.0, 0.85, 0.3), trace=False),
      body("Earth", (AU - m_moon / m_pair * a_moon, 0, 0), (0, v_pair - m_moon / m_pair * v_rel, 0),
           m_earth, 4 * 6.371, (0.3, 0.55, 1.0)),
      body("Moon", (AU + m_earth / m_pair * a_moon, 0, 0), (0, v_pair + m_earth / m_pair * v_rel, 0),
           m_moon, 4 * 1.7374, (0.85, 0.85, 0.8))]
zero_momentum(bs)
for b in bs:
    b["Velocity Z"] = -2 * v_pair
save("sun-earth-moon.ovd", world("Sun, Earth and Moon", 0.1, G_EARTH, 4.0, bs,
     [view("Earth and Moon", (0.0, 0.0, 1500.0), autodist=1500.0, show_grid=False, track_body=101,
           traces_relative_to="Tracked body"),
      view("Orbit from above", (0.0, 0.0, 470000.0), autodist=470000.0, com=True, show_grid=False,
           traces_relative_to="Center of mass")]))
