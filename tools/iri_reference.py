#!/usr/bin/env python3
"""Independent reference figures for the quarter-car tests (tests/analysis/iri_*_test.cpp).

Uses mpmath at 50 digits and shares no code with the C++ engine:
  * the state-transition matrix exp(A*dt) twice: by mpmath.expm (scaling and squaring) and by the
    eigen-decomposition V diag(exp(l*dt)) V^-1; the two must agree to far below double precision;
  * the partial-response vector A^-1 (exp(A*dt) - I) B by mpmath's linear solver;
  * the response of a short synthetic profile, following the documented method (0.25 m slope base,
    initial state from the slope over the initialisation distance divided by K*dx), and its IRI.

Run: python3 tools/iri_reference.py   (needs python3-mpmath). The printed figures are pasted into
the tests as golden values.
"""
import mpmath as mp

mp.mp.dps = 50

K1, K2, C, MU = mp.mpf(653), mp.mpf("63.3"), mp.mpf(6), mp.mpf("0.15")


def model():
    a = mp.zeros(4, 4)
    a[0, 1] = 1
    a[2, 3] = 1
    a[1, 0] = -K2
    a[1, 1] = -C
    a[1, 2] = K2
    a[1, 3] = C
    a[3, 0] = K2 / MU
    a[3, 1] = C / MU
    a[3, 2] = -(K1 + K2) / MU
    a[3, 3] = -C / MU
    b = mp.matrix([0, 0, 0, K1 / MU])
    return a, b


def transition(dt):
    a, b = model()
    st = mp.expm(a * dt)
    evals, evecs = mp.eig(a * dt)
    st_eig = evecs * mp.diag([mp.exp(l) for l in evals]) * mp.inverse(evecs)
    diff = max(abs(st[i, j] - st_eig[i, j]) for i in range(4) for j in range(4))
    assert diff < mp.mpf("1e-30"), diff
    pr = mp.lu_solve(a, (st - mp.eye(4)) * b)
    return st, pr


def response(y, dx, init, speed=80):
    """Signed response of elevations y[0..n-1] (mm) at pitch dx (m), golden car."""
    dt = mp.mpf(dx) / (mp.mpf(speed) / mp.mpf("3.6"))
    st, pr = transition(dt)
    ibase = max(int(mp.floor(mp.mpf("0.25") / dx + mp.mpf("0.5"))), 1)
    n = len(y)
    k = min(int(mp.floor(mp.mpf(init) / dx + mp.mpf("0.5"))) + 1, n)
    x = mp.matrix([(y[k - 1] - y[0]) / (k * mp.mpf(dx)), 0, 0, 0])
    x[2] = x[0]
    out = []
    for i in range(n - ibase):
        u = (y[i + ibase] - y[i]) / (ibase * mp.mpf(dx))
        x = st * x + pr * u
        out.append(x[2] - x[0])
    return out


def show(name, values):
    print(name, ", ".join(mp.nstr(v, 17) for v in values))


if __name__ == "__main__":
    for dx in ("0.25", "0.01"):
        dt = mp.mpf(dx) / (mp.mpf(80) / mp.mpf("3.6"))
        st, pr = transition(dt)
        print(f"dx = {dx} m, dt = {mp.nstr(dt, 17)} s")
        for i in range(4):
            show(f"  ST row {i + 1}:", [st[i, j] for j in range(4)])
        show("  PR:", [pr[i] for i in range(4)])

    # Ramp of 2 mm/m at dx 0.25 m, initialisation 0.75 m (K = 4): the first responses.
    ramp = [mp.mpf(2) * mp.mpf("0.25") * i for i in range(12)]
    show("ramp K=4, first 3 responses:", response(ramp, mp.mpf("0.25"), "0.75")[:3])

    # A sine of 5 mm amplitude and 5 m wavelength, 80 samples at 0.25 m, initialisation 11 m:
    # the IRI as mean |response| (ARS) and as root mean square (RMS).
    sine = [5 * mp.sin(2 * mp.pi * mp.mpf("0.25") * i / 5) for i in range(80)]
    r = response(sine, mp.mpf("0.25"), "11")
    print("sine ARS IRI:", mp.nstr(sum(abs(v) for v in r) / len(r), 17))
    print("sine RMS IRI:", mp.nstr(mp.sqrt(sum(v * v for v in r) / len(r)), 17))
