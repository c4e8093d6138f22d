% Writes octave_values.csv: expressions of this library and the values that Octave gives for what they mean.
% Usage: octave-cli --norc octave_values.m > octave_values.csv (with Debian's octave and octave-signal).
% A line: the expression, then the real and the imaginary part of each entry, row by row, with tabs between them.
% Expressions may define objects for those behind them. What has no counterpart in Octave is not here.

pkg load signal
warning('off', 'all');

% ours, Octave's
cases = {
  % objects
  't=linspace(0,1,64)', 't=linspace(0,1,64)';
  'y=sin(2*PI*5*t)+0.3*cos(2*PI*17*t)+0.1*t', 'y=sin(2*pi*5*t)+0.3*cos(2*pi*17*t)+0.1*t';
  's=signal(t,y)', 's=y';
  'n=series(y,1)', 'n=y';
  'v=[3,-1,4,1,-5,9,2,-6]', 'v=[3,-1,4,1,-5,9,2,-6]';
  'p=[1,4,2,8,5,7]', 'p=[1,4,2,8,5,7]';
  'a=[[4,-2,1],[3,6,-4],[2,1,8]]', 'a=[4,-2,1;3,6,-4;2,1,8]';
  'b=[[1,2,3],[0,-1,5],[7,2,2]]', 'b=[1,2,3;0,-1,5;7,2,2]';
  'z=[1+2*I,3-I,-0.5*I,-2]', 'z=[1+2i,3-1i,-0.5i,-2]';
  'x=[[1,2,3,4],[4,3,-2,1]]', 'x=[1,2,3,4;4,3,-2,1]';
  % operators
  'v^2-3*v', 'v.^2-3*v';
  '2^v', '2.^v';
  'z/(1+I)', 'z/(1+1i)';
  'z^1.5', 'z.^1.5';
  '(-2)^0.5', '(-2)^0.5';
  'z^(0.5+2*I)', 'z.^(0.5+2i)';
  'a*b', 'a.*b';
  '17.5%-5', 'rem(17.5,-5)';
  'v%3', 'rem(v,3)';
  'v[1:6:2]', 'v(2:2:7)';
  % entry by entry
  'mod(v,3)', 'mod(v,3)';
  'mod(7.25,-2)', 'mod(7.25,-2)';
  'round(v/4)', 'round(v/4)';
  'floor(v/4)', 'floor(v/4)';
  'ceil(v/4)', 'ceil(v/4)';
  'sgn(z)', 'sign(z)';
  'abs(z)', 'abs(z)';
  'arg(z)', 'arg(z)';
  'conj(z)', 'conj(z)';
  'exp(z)', 'exp(z)';
  'ln(z)', 'log(z)';
  'log(z)', 'log10(z)';
  'sqrt(z)', 'sqrt(z)';
  'sin(z)', 'sin(z)';
  'cos(z)', 'cos(z)';
  'tan(z)', 'tan(z)';
  'sinh(z)', 'sinh(z)';
  'cosh(z)', 'cosh(z)';
  'tanh(z)', 'tanh(z)';
  'asinh(v)', 'asinh(v)';
  'atan(v)', 'atan(v)';
  'asin(v/10)', 'asin(v/10)';
  'acos(v/10)', 'acos(v/10)';
  'atanh(v/10)', 'atanh(v/10)';
  'atan2(v,3)', 'atan2(v,3)';
  'deg2rad(v)', 'deg2rad(v)';
  'rad2deg(v)', 'rad2deg(v)';
  'cart2pol(-3,4)', '[q1,q2]=cart2pol(-3,4); [q1,q2]';
  'pol2cart(2.5,3)', '[q1,q2]=pol2cart(2.5,3); [q1,q2]';
  % statistics
  'sum(x)', 'sum(x,2)''';
  'mean(x)', 'mean(x,2)''';
  'stddev(x)', 'std(x,0,2)''';
  'rms(v)', 'sqrt(meansq(v))';
  'rmsdev(v)', 'std(v,1)';
  'rmsdev(v,2)', 'sqrt(meansq(v-2))';
  'norm(v)', 'norm(v)';
  'norm(v,1)', 'norm(v,1)';
  'norm(v,3)', 'norm(v,3)';
  'euklidnorm(z)', 'norm(z)';
  'powmean(p,3)', 'mean(p.^3)^(1/3)';
  'powmean(p,0)', 'exp(mean(log(p)))';
  'powmean(p,-1)', '1/mean(1./p)';
  'min(v)', 'min(v)';
  'max(v)', 'max(v)';
  'sort(v)', 'sort(v)';
  'sort(v,TRUE)', 'sort(v,"descend")';
  % matrices
  'matrixmult(a,b)', 'a*b';
  'invert(a)', 'inv(a)';
  'transpose(x)', 'x.''';
  'innerprod(v,v^2)', 'dot(v,v.^2)';
  'outerprod(p,v)', 'p''*v';
  'lufactorize(a,1)', '[l,u,q]=lu(a); l';
  'lufactorize(a,2)', '[l,u,q]=lu(a); u';
  'lufactorize(b,3)', '[l,u,q]=lu(b); q';
  'lufactorize(b,2)', '[l,u,q]=lu(b); u';
  'mat(v,4)', 'reshape(v,4,[])';
  'vec(x)', 'x(:).''';
  'linspace(-2,3,7)', 'linspace(-2,3,7)';
  'size(x)', 'numel(x)';
  % Fourier
  'fft(v)', 'fft(v)';
  'fft(z)', 'fft(z)';
  'fft([v,p,1])', 'fft([v,p,1])';
  'ifft(z)', 'ifft(z)';
  'fft(x)', 'fft(x,[],2)';
  'fft2d(a)', 'fft2(a)';
  'ifft2d(x)', 'ifft2(x)';
  'fftshift([1,2,3,4,5])', 'fftshift([1,2,3,4,5])';
  'ifftshift([1,2,3,4,5])', 'ifftshift([1,2,3,4,5])';
  'fft(s)', 'fft(y)';
  % calculus
  'area(s)', 'trapz(t,y)';
  'integrate(s)', 'cumtrapz(t,y)';
  'integrate(s,2)', '2+cumtrapz(t,y)';
  'vec(derive(s))[1:62:1]', 'gradient(y,t)(2:63)';
  'derive(s,FORWARD)', 'q=diff(y)./diff(t); [q,q(end)]';
  'derive(s,BACKWARD)', 'q=diff(y)./diff(t); [q(1),q]';
  % interpolation
  'interpolate(s,[0.011,0.4,0.987],LINEAR)', 'interp1(t,y,[0.011,0.4,0.987],"linear")';
  'interpolate(s,[0.011,0.4,0.987],SPLINE)', 'interp1(t,y,[0.011,0.4,0.987],"spline")';
  'interpolate(s,[0.011,0.4,0.987],ZERO)', 'interp1(t,y,[0.011,0.4,0.987],"previous")';
  'interpolate(signal([0,0.5,2,3,7],[1,-1,4,2,2]),linspace(0,7,15),SPLINE)', ...
    'spline([0,0.5,2,3,7],[1,-1,4,2,2],linspace(0,7,15))';
  'mapping(v,[-4,0,4],[1,2,7])', 'interp1([-1e9,-4,0,4,1e9],[1,1,2,7,7],v)';
  % filters; our frequencies are shares of the sampling frequency here, Octave's of half of it
  'butterworthFilter(n,LOWPASS,4,0.1)', '[q,r]=butter(4,0.2); filter(q,r,y)';
  'butterworthFilter(n,HIGHPASS,3,0.15)', '[q,r]=butter(3,0.3,"high"); filter(q,r,y)';
  'butterworthFilter(n,BANDPASS,2,0.1,0.2)', '[q,r]=butter(2,[0.2,0.4]); filter(q,r,y)';
  'butterworthFilter(n,BANDSTOP,3,0.1,0.3)', '[q,r]=butter(3,[0.2,0.6],"stop"); filter(q,r,y)';
  'chebyOneFilter(n,LOWPASS,5,0.5,0.1)', '[q,r]=cheby1(5,0.5,0.2); filter(q,r,y)';
  'chebyOneFilter(n,HIGHPASS,4,1,0.2)', '[q,r]=cheby1(4,1,0.4,"high"); filter(q,r,y)';
  'chebyOneFilter(n,BANDPASS,3,0.5,0.1,0.3)', '[q,r]=cheby1(3,0.5,[0.2,0.6]); filter(q,r,y)';
  'chebyTwoFilter(n,LOWPASS,5,40,0.15)', '[q,r]=cheby2(5,40,0.3); filter(q,r,y)';
  'chebyTwoFilter(n,HIGHPASS,4,30,0.2)', '[q,r]=cheby2(4,30,0.4,"high"); filter(q,r,y)';
  'chebyTwoFilter(n,BANDSTOP,2,30,0.1,0.3)', '[q,r]=cheby2(2,30,[0.2,0.6],"stop"); filter(q,r,y)';
  'vec(smoothFilter(n,7,2))[3:60:1]', 'sgolayfilt(y,2,7)(4:61)';
  'vec(smoothFilter(n,5))[2:61:1]', 'conv(y,ones(1,5)/5,"valid")';
};

for k = 1:rows(cases)
  statements = strsplit(cases{k, 2}, '; ');
  for j = 1:numel(statements) - 1, eval([statements{j} ';']); end
  value = eval([statements{end} ';']);
  entries = double(value).';
  printf('%s', cases{k, 1});
  printf('\t%.17g\t%.17g', [real(entries(:)), imag(entries(:))].');
  printf('\n');
end
